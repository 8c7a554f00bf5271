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

struct exact_match {
    std::string category, discid, dtitle;
    bool exact;
};

TEST_F(http_connection, query_sends_the_toc_and_delivers_matches) {
    http_->push(fixture_bytes("cddb-protocol/captured-http-cddb-query-proto-6.body.txt"));
    auto conn = connect("ann@mailhost");
    std::vector<exact_match> got;
    conn->query(cddb_testing::tracks_of({180.0, 240.2, 300.5}),
                [&](disc_record&& r, bool exact) {
                    got.push_back({r.get_field(disc_record::category), r.get_field(disc_record::discid),
                                   r.get_field(disc_record::dtitle), exact});
                },
                abort_);
    EXPECT_EQ(http_->urls(), (std::vector<std::string>{url_for("cddb+query+1502D003+3+150+13650+31665+722")}));
    ASSERT_EQ(got.size(), 3u);
    EXPECT_EQ(got[2].category, "rock");
    EXPECT_TRUE(got[2].exact);
    EXPECT_TRUE(console().empty());
    EXPECT_EQ(http_->open_streams(), 0);
}

TEST_F(http_connection, read_sites_and_lscat_send_their_commands) {
    http_->push(fixture_bytes("cddb-protocol/captured-http-cddb-read-proto-6.body.txt"));
    http_->push("210 OK, site information follows (until terminating `.')\r\n" +
                fixture_bytes("cddb-protocol/sites-lines-level3-CDDBPROTO-example.txt") + ".\r\n");
    http_->push("210 OK, category list follows (until terminating `.')\r\ndata\r\nfolk\r\n.\r\n");
    auto conn = connect("ann@mailhost");

    std::vector<disc_record> records;
    conn->read("misc", "940aac0d", [&](disc_record&& r) { records.push_back(std::move(r)); }, abort_);
    std::vector<server_record> sites;
    conn->sites([&](server_record&& s) { sites.push_back(std::move(s)); }, abort_);
    conn->lscat(abort_);

    EXPECT_EQ(http_->urls(), (std::vector<std::string>{url_for("cddb+read+misc+940aac0d"), url_for("sites"),
                                                       url_for("cddb+lscat")}));
    ASSERT_EQ(records.size(), 1u);
    EXPECT_STREQ(records[0].get_field(disc_record::category), "misc");
    EXPECT_EQ(records[0].get_track_count(), 13u);
    ASSERT_EQ(sites.size(), 2u);
    EXPECT_STREQ(sites[1].get_address(), "/~cddb/cddb.cgi");
    EXPECT_TRUE(console().empty());
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
                    email_case{"J\xC3\xBCrgen@m\xC3\xBCnchen.example",
                               "J%ffffffc3%ffffffbcrgen+m%ffffffc3%ffffffbcnchen.example", true},
                    email_case{"ann @mailhost", "user+tessellon.invalid", false},
                    email_case{"ann@mail host", "user+tessellon.invalid", false},
                    email_case{" ann@mailhost", "user+tessellon.invalid", false},
                    email_case{"no at sign", "user+tessellon.invalid", false},
                    email_case{"nobody.example", "user+tessellon.invalid", false},
                    email_case{"", "user+tessellon.invalid", false}));

TEST_F(http_connection, port_80_is_left_out) {
    server_.set_port("80");
    http_->push("210 ok\r\n.\r\n");
    connect("ann@mailhost")->lscat(abort_);
    EXPECT_EQ(http_->urls().at(0),
              "http://cddb.example/~cddb/cddb.cgi?cmd=cddb+lscat&hello=ann+mailhost+sonatag2+0.9&proto=6");
}

TEST_F(http_connection, opening_copies_the_server_record) {
    auto conn = connect("ann@mailhost");
    server_.set_server("changed.example");
    http_->push("210 ok\r\n.\r\n");
    conn->lscat(abort_);
    EXPECT_EQ(http_->urls().at(0).rfind("http://cddb.example:8880/", 0), 0u);
}

TEST_F(http_connection, send_escapes_the_command) {
    http_->push("210 ok\r\n.\r\n");
    auto conn = connect("ann@mailhost");
    struct ignore_all final : response_handler {
        bool on_status(unsigned, std::string_view) override { return true; }
        void on_body_line(std::string_view) override {}
        void on_end() override {}
    } handler;
    conn->send("cddb read\trock &x=\xE9", handler, abort_);
    EXPECT_EQ(http_->urls().at(0), url_for("cddb+read%09rock+&x=%ffffffe9"));
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

TEST_F(http_connection, a_failed_fetch_passes_through_unchanged_and_is_logged) {
    canned_http::answer a;
    a.failure = "Could not resolve host: cddb.example";
    http_->push(a);
    auto conn = connect("ann@mailhost");
    failed_exchange f = fail_kind([&] { conn->lscat(abort_); });
    EXPECT_EQ(f.kind, "io");
    EXPECT_EQ(f.text, "Could not resolve host: cddb.example");
    EXPECT_EQ(console(), (std::vector<std::string>{query_failed}));
}

TEST_F(http_connection, answer_failures_are_logged_with_their_own_text) {
    struct answer_case {
        std::string bytes;
        failed_exchange expected;
    } cases[] = {
        {"409 No handshake\r\n", {"io", "CDDB: No handshake"}},
        {"401 rock 1502D003 No such CD entry in database\r\n", {"not found", "CDDB: Specified entry not found"}},
        {"210 entry follows\r\n", {"data", "Unsupported format or corrupted file"}},
        {"210 entry follows\r\n# xmcd\r\nDTITLE=Die \xC4rzte\r\n.\r\n",
         {"data", "Unsupported format or corrupted file"}},
        {"210 entry follows\r\n# xmcd\r\nBOGUS=1\r\n.\r\n", {"data", "CDDB: Unrecognized keyword 'BOGUS=1'"}},
        {"<html>\r\n", {"data", "Malformed status code: <ht"}},
    };
    auto conn = connect("ann@mailhost");
    std::size_t logged = 0;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.bytes);
        http_->push(c.bytes);
        read_outcome r = run_read(*conn, "1502D003", abort_);
        EXPECT_EQ(r.failed.kind, c.expected.kind);
        EXPECT_EQ(r.failed.text, c.expected.text);
        EXPECT_FALSE(r.delivered);
        EXPECT_EQ(console().size(), ++logged);
        EXPECT_EQ(console().back(), query_failed);
        EXPECT_EQ(http_->open_streams(), 0);
    }
}

TEST_F(http_connection, a_latin1_entry_is_refused) {
    http_->push("210 rock 38043805 CD database entry follows (until terminating `.')\r\n" +
                fixture_bytes("xmcd/entries/38043805.latin1.xmcd") + ".\r\n");
    auto conn = connect("ann@mailhost");
    read_outcome r = run_read(*conn, "38043805", abort_);
    EXPECT_EQ(r.failed.kind, "data");
    EXPECT_EQ(r.failed.text, "Unsupported format or corrupted file");
    EXPECT_FALSE(r.delivered);
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

TEST_F(http_connection, line_length_limit_holds_over_http) {
    std::string prefix = "rock 1502D003 ";
    std::string longest = prefix + std::string(16384 - prefix.size(), 't');
    auto conn = connect("ann@mailhost");

    http_->push("211 inexact\r\n" + longest + "\r\n.\r\n");
    query_outcome passed = run_query(*conn, abort_);
    EXPECT_EQ(passed.failed.kind, "none");
    ASSERT_EQ(passed.titles.size(), 1u);
    EXPECT_EQ(passed.titles[0].size(), 16384 - prefix.size());
    EXPECT_TRUE(console().empty());

    http_->push("211 inexact\r\n" + longest + "t\r\n.\r\n");
    query_outcome failed = run_query(*conn, abort_);
    EXPECT_EQ(failed.failed.kind, "data");
    EXPECT_EQ(failed.failed.text, "Unsupported format or corrupted file");
    EXPECT_TRUE(failed.titles.empty());
    EXPECT_EQ(console(), (std::vector<std::string>{query_failed}));
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
    failed_exchange f = fail_kind([&] { conn->lscat(abort_); });
    EXPECT_EQ(f.kind, "aborted");
    EXPECT_EQ(console(), (std::vector<std::string>{query_failed}));
}

TEST_F(http_connection, the_handler_is_found_by_protocol_without_regard_to_case) {
    server_.set_protocol("HTTP");
    EXPECT_TRUE(static_cast<bool>(connect("ann@mailhost")));
    for (const char* other : {"cddbp", "https", "", "http "}) {
        SCOPED_TRACE(other);
        server_.set_protocol(other);
        try {
            connect("ann@mailhost");
            ADD_FAILURE() << "a handler was found";
        } catch (const exception_service_not_found& e) {
            EXPECT_STREQ(e.what(), "Service not found");
        }
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
