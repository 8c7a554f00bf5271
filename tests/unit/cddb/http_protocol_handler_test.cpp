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
using cddb_testing::fixture_bytes;

constexpr const char* query_failed = "CDDB query failed";
constexpr const char* invalid_email = "discora: invalid email address, using default";

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

    service_ref<protocol_handler> connect(const std::string& email) {
        cfg_email.set(email);
        return open_protocol_handler(server_);
    }

    std::string url_for(const std::string& cmd, const std::string& hello = "ann+mailhost") const {
        return "http://cddb.example:8880/~cddb/cddb.cgi?cmd=" + cmd + "&hello=" + hello + "+sonatag2+0.9&proto=6";
    }

    std::vector<std::string> console() const { return host_.console_lines(); }

    testing_support::test_host host_;
    std::string saved_email_;
    service_ref<canned_http> http_ = make_service<canned_http>();
    server_record server_;
    abort_source_impl abort_;
};

TEST_F(http_connection, each_command_is_one_get_and_its_answer_is_delivered) {
    http_->push(fixture_bytes("cddb-protocol/captured-http-cddb-query-proto-6.body.txt"));
    http_->push(fixture_bytes("cddb-protocol/captured-http-cddb-read-proto-6.body.txt"));
    http_->push("210 OK, site information follows (until terminating `.')\r\n" +
                fixture_bytes("cddb-protocol/sites-lines-level3-CDDBPROTO-example.txt") + ".\r\n");
    http_->push("210 OK, category list follows (until terminating `.')\r\ndata\r\nfolk\r\n.\r\n");
    auto conn = connect("ann@mailhost");

    std::vector<std::string> matches;
    conn->query(cddb_testing::tracks_of({180.0, 240.2, 300.5}),
                [&](disc_record&& r, bool exact) { matches.push_back(r.get_field(disc_record::category) + std::string(exact ? " exact" : "")); },
                abort_);
    std::vector<disc_record> records;
    conn->read("misc", "940aac0d", [&](disc_record&& r) { records.push_back(std::move(r)); }, abort_);
    std::vector<server_record> sites;
    conn->sites([&](server_record&& s) { sites.push_back(std::move(s)); }, abort_);
    conn->lscat(abort_);

    EXPECT_EQ(http_->urls(), (std::vector<std::string>{url_for("cddb+query+1502D003+3+150+13650+31665+722"),
                                                       url_for("cddb+read+misc+940aac0d"), url_for("sites"),
                                                       url_for("cddb+lscat")}));
    EXPECT_EQ(matches, (std::vector<std::string>{"data exact", "misc exact", "rock exact"}));
    ASSERT_EQ(records.size(), 1u);
    EXPECT_STREQ(records[0].get_field(disc_record::category), "misc");
    EXPECT_EQ(records[0].get_track_count(), 13u);
    ASSERT_EQ(sites.size(), 2u);
    EXPECT_STREQ(sites[1].get_address(), "/~cddb/cddb.cgi");
    EXPECT_TRUE(console().empty());
    EXPECT_EQ(http_->open_streams(), 0);
}

struct email_case {
    std::string email;
    std::string hello;  // as it appears in the URL
    bool valid;
};

class http_connection_email : public http_connection, public testing::WithParamInterface<email_case> {};

TEST_P(http_connection_email, decides_the_hello) {
    http_->push("200 rock 1502D003 A / B\r\n");
    auto conn = connect(GetParam().email);
    conn->lscat(abort_);
    ASSERT_EQ(http_->urls().size(), 1u);
    EXPECT_EQ(http_->urls()[0], url_for("cddb+lscat", GetParam().hello));
    EXPECT_EQ(console(), GetParam().valid ? std::vector<std::string>{} : std::vector<std::string>{invalid_email});
}

INSTANTIATE_TEST_SUITE_P(
    emails, http_connection_email,
    testing::Values(email_case{"ann@mailhost", "ann+mailhost", true},
                    email_case{"ann@host@second", "ann+host@second", true},  // split at the first
                    email_case{"@mailhost", "+mailhost", true},
                    email_case{"ann@", "ann+", true},
                    email_case{"ann\t@mail\thost", "ann%09+mail%09host", true},  // only a space disqualifies
                    email_case{"ann @mailhost", "user+tessellon.invalid", false},
                    email_case{"ann@mail host", "user+tessellon.invalid", false},
                    email_case{"no at sign", "user+tessellon.invalid", false},
                    email_case{"", "user+tessellon.invalid", false}));

TEST_F(http_connection, opening_copies_the_server_record) {
    auto conn = connect("ann@mailhost");
    server_.set_server("changed.example");
    http_->push("210 ok\r\n.\r\n");
    conn->lscat(abort_);
    EXPECT_EQ(http_->urls().at(0).rfind("http://cddb.example:8880/", 0), 0u);
}

// What reached the caller and the console when an exchange fails.
struct failed_exchange {
    std::string kind;
    std::string text;
};

failed_exchange fail_kind(const std::function<void()>& action) {
    try {
        action();
    } catch (const tunehall_io::exception_aborted& e) {
        return {"aborted", e.what()};
    } catch (const tunehall_io::exception_io_not_found& e) {
        return {"not found", e.what()};
    } catch (const tunehall_io::exception_io_data& e) {
        return {"data", e.what()};
    } catch (const tunehall_io::exception_io& e) {
        return {"io", e.what()};
    }
    return {"none", ""};
}

// A query for one 180 s track: the titles delivered, and how it ended.
struct query_outcome {
    std::vector<std::string> titles;
    failed_exchange failed;
};

query_outcome run_query(protocol_handler& conn, abort_source& abort) {
    query_outcome out;
    auto keep_title = [&](disc_record&& r, bool) { out.titles.emplace_back(r.get_field(disc_record::dtitle)); };
    out.failed = fail_kind([&] { conn.query(cddb_testing::tracks_of({180.0}), keep_title, abort); });
    return out;
}

// A read of rock/1502D003: how it ended, and whether a record came through.
struct read_outcome {
    bool delivered = false;
    failed_exchange failed;
};

read_outcome run_read(protocol_handler& conn, const char* discid, abort_source& abort) {
    read_outcome out;
    out.failed = fail_kind([&] { conn.read("rock", discid, [&](disc_record&&) { out.delivered = true; }, abort); });
    return out;
}

TEST_F(http_connection, failures_pass_through_unchanged_and_are_logged) {
    struct answer_case {
        std::string bytes;
        failed_exchange expected;
    } cases[] = {
        {"", {"io", "Could not resolve host: cddb.example"}},  // the fetch itself fails
        {"401 rock 1502D003 No such CD entry in database\r\n", {"not found", "CDDB: Specified entry not found"}},
        {"210 entry follows\r\n# xmcd\r\nDTITLE=Die \xC4rzte\r\n.\r\n",
         {"data", "Unsupported format or corrupted file"}},
    };
    auto conn = connect("ann@mailhost");
    std::size_t logged = 0;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.bytes);
        canned_http::answer a;
        if (c.bytes.empty()) a.failure = c.expected.text;
        a.bytes = c.bytes;
        http_->push(a);
        read_outcome r = run_read(*conn, "1502D003", abort_);
        EXPECT_EQ(r.failed.kind, c.expected.kind);
        EXPECT_EQ(r.failed.text, c.expected.text);
        EXPECT_FALSE(r.delivered);
        EXPECT_EQ(console().size(), ++logged);
        EXPECT_EQ(console().back(), query_failed);
        EXPECT_EQ(http_->open_streams(), 0);
    }
}

TEST_F(http_connection, a_query_that_cannot_be_built_sends_nothing_and_logs_nothing) {
    auto conn = connect("ann@mailhost");
    auto ignore = [](disc_record&&, bool) {};
    failed_exchange f = fail_kind([&] { conn->query(cddb_testing::tracks_of({180.0, 0.0}), ignore, abort_); });
    EXPECT_EQ(f.kind, "data");
    EXPECT_EQ(f.text, "CDDB: Could not build query");
    EXPECT_TRUE(http_->urls().empty());
    EXPECT_TRUE(console().empty());
}

TEST_F(http_connection, an_abort_mid_answer_delivers_nothing_more) {
    std::string status = "211 inexact\r\n";
    std::string first = "rock 1502D003 First\r\n";
    canned_http::answer a;
    a.bytes = status + first + "jazz 1502D003 Second\r\n.\r\n";
    a.abort_after = status.size() + first.size() + 3;  // inside the second match line
    a.abort_target = &abort_;
    http_->push(a);
    auto conn = connect("ann@mailhost");
    query_outcome q = run_query(*conn, abort_);
    EXPECT_EQ(q.failed.kind, "aborted");
    EXPECT_EQ(q.titles, (std::vector<std::string>{"First"}));
    EXPECT_EQ(console(), (std::vector<std::string>{query_failed}));
    EXPECT_EQ(http_->open_streams(), 0);
}

TEST_F(http_connection, an_abort_before_sending_fetches_nothing) {
    auto conn = connect("ann@mailhost");
    abort_.abort();
    EXPECT_EQ(fail_kind([&] { conn->lscat(abort_); }).kind, "aborted");
    EXPECT_TRUE(http_->urls().empty());
    EXPECT_EQ(console(), (std::vector<std::string>{query_failed}));
}

TEST_F(http_connection, the_handler_is_found_by_protocol_without_regard_to_case) {
    server_.set_protocol("HTTP");
    EXPECT_TRUE(static_cast<bool>(connect("ann@mailhost")));
    for (const char* other : {"cddbp", "https", "", "http "}) {
        server_.set_protocol(other);
        EXPECT_THROW(connect("ann@mailhost"), exception_service_not_found) << other;
    }
}

TEST_F(http_connection, every_lookup_and_create_instance_give_a_fresh_connection) {
    auto first = connect("ann@mailhost");
    auto second = connect("ann@mailhost");
    EXPECT_NE(first.get(), second.get());
    service_ref<protocol_handler> made = first->create_instance();
    ASSERT_TRUE(static_cast<bool>(made));
    EXPECT_NE(made.get(), first.get());
    EXPECT_TRUE(made->supports("Http"));
    EXPECT_FALSE(made->supports("cddbp"));
}

} // namespace
