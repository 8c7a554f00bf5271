// The http connection as the lookup uses it: found through the host's registry, opened with the
// user's e-mail, sending each command as one GET through the host's file-system layer (here a
// stand-in that serves prepared answers) and reporting failures on the console.

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <tunehall/exceptions.h>

#include "cddb/protocol_handler.h"
#include "cddb_test_support.h"
#include "config/settings.h"
#include "support/test_host.h"

namespace {

using cddb_testing::canned_http;
using cddb_testing::failure;
using cddb_testing::failure_of;
using cddb_testing::fixture_bytes;
using strings = std::vector<std::string>;

constexpr const char* query_failed = "CDDB query failed";

class http_connection : public testing::Test {
protected:
    http_connection() {
        saved_email_ = cfg_email.get();
        host_.add_service(filesystem::class_guid, http_);
        server_.set_server("cddb.example");
        server_.set_protocol("http");
        server_.set_port("8880");
        server_.set_address("/~cddb/cddb.cgi");
        server_.set_description("test server");
    }
    ~http_connection() override { cfg_email.set(saved_email_); }

    service_ref<protocol_handler> connect(const std::string& email = "ann@mailhost") {
        cfg_email.set(email);
        return open_protocol_handler(server_);
    }

    std::string url_for(const std::string& cmd, const std::string& hello = "ann+mailhost") const {
        return "http://cddb.example:8880/~cddb/cddb.cgi?cmd=" + cmd + "&hello=" + hello + "+sonatag2+0.9&proto=6";
    }

    strings console() const { return host_.console_lines(); }

    testing_support::test_host host_;
    std::string saved_email_;
    service_ref<canned_http> http_ = make_service<canned_http>();
    server_record server_;
    abort_source_impl abort_;
};

// What each command delivers is the handlers' business; here each is one GET whose answer goes
// back to the caller, and no stream stays open.
TEST_F(http_connection, each_command_is_one_get_and_its_answer_is_delivered) {
    http_->push("211 inexact\r\nrock 1502D003 A / B\r\n.\r\n");
    http_->push(fixture_bytes("cddb-protocol/captured-http-cddb-read-proto-6.body.txt"));
    http_->push("210 OK\r\nh http 80 /cgi N001.00 E002.00 d\r\n.\r\n");
    http_->push("210 OK\r\ndata\r\n.\r\n");
    auto conn = connect();
    std::size_t delivered = 0;
    conn->query(cddb_testing::tracks_of({180.0, 240.2, 300.5}), [&](disc_record&&, bool) { ++delivered; }, abort_);
    conn->read("misc", "940aac0d", [&](disc_record&&) { ++delivered; }, abort_);
    conn->sites([&](server_record&&) { ++delivered; }, abort_);
    conn->lscat(abort_);
    EXPECT_EQ(http_->urls(), (strings{url_for("cddb+query+1502D003+3+150+13650+31665+722"),
                                      url_for("cddb+read+misc+940aac0d"), url_for("sites"), url_for("cddb+lscat")}));
    EXPECT_EQ(delivered, 3u);
    EXPECT_TRUE(console().empty());
    EXPECT_EQ(http_->open_streams(), 0);
}

TEST_F(http_connection, the_email_decides_the_hello) {
    const struct {
        std::string email;
        std::string hello;  // as it appears in the URL
        bool valid;
    } cases[] = {
        {"ann@mailhost", "ann+mailhost", true},
        {"ann@host@second", "ann+host@second", true},  // split at the first
        {"@mailhost", "+mailhost", true},
        {"ann@", "ann+", true},
        {"ann\t@mail\thost", "ann%09+mail%09host", true},  // only a space disqualifies
        {"ann @mailhost", "user+tessellon.invalid", false},
        {"ann@mail host", "user+tessellon.invalid", false},
        {"no at sign", "user+tessellon.invalid", false},
        {"", "user+tessellon.invalid", false},
    };
    std::size_t warnings = 0;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.email);
        http_->push("210 ok\r\n.\r\n");
        connect(c.email)->lscat(abort_);
        EXPECT_EQ(http_->urls().back(), url_for("cddb+lscat", c.hello));
        if (!c.valid) ++warnings;
        EXPECT_EQ(console(), strings(warnings, "discora: invalid email address, using default"));
    }
}

TEST_F(http_connection, opening_copies_the_server_record) {
    auto conn = connect();
    server_.set_server("changed.example");
    http_->push("210 ok\r\n.\r\n");
    conn->lscat(abort_);
    EXPECT_EQ(http_->urls().at(0).rfind("http://cddb.example:8880/", 0), 0u);
}

TEST_F(http_connection, failures_pass_through_unchanged_and_are_logged) {
    const failure cases[] = {
        {"io", "Could not resolve host: cddb.example"},  // the fetch itself fails
        {"not found", "CDDB: Specified entry not found"},
    };
    auto conn = connect();
    http_->push(canned_http::answer{"", std::string(cases[0].text)});
    http_->push("401 rock 1502D003 No such CD entry in database\r\n");
    for (const failure& expected : cases) {
        bool delivered = false;
        EXPECT_EQ(failure_of([&] { conn->read("rock", "1502D003", [&](disc_record&&) { delivered = true; }, abort_); }),
                  expected);
        EXPECT_FALSE(delivered);
        EXPECT_EQ(http_->open_streams(), 0);
    }
    EXPECT_EQ(console(), (strings{query_failed, query_failed}));
}

TEST_F(http_connection, a_query_that_cannot_be_built_sends_nothing_and_logs_nothing) {
    auto conn = connect();
    EXPECT_EQ(failure_of([&] { conn->query(cddb_testing::tracks_of({180.0, 0.0}), [](disc_record&&, bool) {}, abort_); }),
              (failure{"data", "CDDB: Could not build query"}));
    EXPECT_TRUE(http_->urls().empty());
    EXPECT_TRUE(console().empty());
}

TEST_F(http_connection, an_abort_before_sending_fetches_nothing) {
    auto conn = connect();
    abort_.abort();
    EXPECT_EQ(failure_of([&] { conn->lscat(abort_); }).kind, "aborted");
    EXPECT_TRUE(http_->urls().empty());
    EXPECT_EQ(console(), (strings{query_failed}));
}

TEST_F(http_connection, the_handler_is_found_by_protocol_without_regard_to_case) {
    server_.set_protocol("HTTP");
    EXPECT_TRUE(static_cast<bool>(connect()));
    for (const char* other : {"cddbp", "https", "", "http "}) {
        server_.set_protocol(other);
        EXPECT_THROW(connect(), exception_service_not_found) << other;
    }
}

TEST_F(http_connection, every_lookup_and_create_instance_give_a_fresh_connection) {
    auto first = connect();
    auto second = connect();
    EXPECT_NE(first.get(), second.get());
    service_ref<protocol_handler> made = first->create_instance();
    ASSERT_TRUE(static_cast<bool>(made));
    EXPECT_NE(made.get(), first.get());
    EXPECT_TRUE(made->supports("Http"));
    EXPECT_FALSE(made->supports("cddbp"));
}

} // namespace
