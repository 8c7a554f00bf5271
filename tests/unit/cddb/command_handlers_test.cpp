// The answers of the four commands: which status codes each accepts, what it delivers, and the
// exact text and kind of every failure. Answers go through the real line splitter.

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <tunehall/exceptions.h>

#include "cddb/lscat_handler.h"
#include "cddb/query_handler.h"
#include "cddb/read_handler.h"
#include "cddb/sites_handler.h"
#include "cddb_test_support.h"
#include "unit/config/server_record_maker.h"

namespace {

using cddb_testing::failure;
using cddb_testing::failure_of;
using cddb_testing::feed_answer;
using cddb_testing::fixture_bytes;
using cddb_testing::no_failure;

struct match {
    std::string category, discid, dtitle;
    bool exact;
    bool operator==(const match&) const = default;
};

void PrintTo(const match& m, std::ostream* os) {
    *os << (m.exact ? "exact " : "inexact ") << m.category << " " << m.discid << " [" << m.dtitle << "]";
}

// What a handler delivered before the answer ended, and how it ended.
template <typename T>
struct run_of {
    std::vector<T> got;
    failure failed;
};
using query_run = run_of<match>;

query_run run_query(const std::string& answer) {
    query_run run;
    query_handler handler([&](disc_record&& r, bool exact) {
        run.got.push_back({r.get_field(disc_record::category), r.get_field(disc_record::discid),
                               r.get_field(disc_record::dtitle), exact});
    });
    run.failed = failure_of([&] { feed_answer(handler, answer); });
    return run;
}

// --- query ----------------------------------------------------------------------------------

using matches = std::vector<match>;

TEST(query_answer, delivers_exact_and_inexact_matches_as_sent) {
    const std::string family = "Marina & The Diamonds / The Family Jewels";
    const struct {
        std::string answer;
        matches expected;
    } cases[] = {
        {"202 No match for disc ID 1502D003.\r\n", {}},
        {"200 rock 1502D003 Artist / Album\r\n", {{"rock", "1502D003", "Artist / Album", true}}},
        {"200 rock 1502D003 \n", {{"rock", "1502D003", "", true}}},
        {fixture_bytes("cddb-protocol/captured-http-cddb-query-proto-3.body.txt"), {{"data", "940aac0d", family, true}}},
        // The rock entry spells the artist differently: each category holds its own entry.
        {fixture_bytes("cddb-protocol/captured-http-cddb-query-proto-6.body.txt"),
         {{"data", "940aac0d", family, true},
          {"misc", "940aac0d", family, true},
          {"rock", "940aac0d", "Marina & the Diamonds / The Family Jewels", true}}},
        {"211 Found inexact matches, list follows (until terminating `.')\n"
         "reggae d50dd30f Various / Ska Island\nmisc d50dd30f Various / Ska Island\n.\n"
         "rock ffffffff after the terminator\n",
         {{"reggae", "d50dd30f", "Various / Ska Island", false}, {"misc", "d50dd30f", "Various / Ska Island", false}}},
        {"211 inexact\nrock 0A1B2C03 Band  /  Title \\n with \\x escapes \n.\n",
         {{"rock", "0A1B2C03", "Band  /  Title \\n with \\x escapes ", false}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.answer.substr(0, 40));
        query_run run = run_query(c.answer);
        EXPECT_EQ(run.failed, no_failure);
        EXPECT_EQ(run.got, c.expected);
    }
}

struct status_case {
    std::string status_line;
    failure expected;
};

TEST(query_answer, other_statuses_and_bad_match_lines_fail_with_their_own_text_and_kind) {
    const std::string unexpected = "CDDB: Invalid status code. Expected 200, 210, 211, 202, 403, or 409, got ";
    const status_case cases[] = {
        {"403 Database entry is corrupt.", {"data", "CDDB: Database entry is corrupt"}},
        {"409 No handshake.", {"io", "CDDB: No handshake"}},
        {"201 ready", {"data", unexpected + "201"}},
        {"401 not found", {"data", unexpected + "401"}},
        {"530 Server error", {"data", unexpected + "530"}},
        {"000 zero", {"data", unexpected + "0"}},
        {"999 nine", {"data", unexpected + "999"}},
    };
    for (const auto& c : cases) {
        query_run run = run_query(c.status_line + "\r\nrock 1502D003 A / B\r\n.\r\n");
        EXPECT_EQ(run.failed, c.expected) << c.status_line;
        EXPECT_TRUE(run.got.empty());
    }
    const failure no_category{"data", "CDDB: No category found in response"};
    const failure no_discid{"data", "CDDB: No discid found in response"};
    const std::pair<std::string, failure> lines[] = {
        {"rock", no_category}, {" rock 1502D003 A / B", no_category}, {"rock 1502D003", no_discid},
        {"rock  A / B", no_discid}};
    for (const auto& [line, expected] : lines) {
        EXPECT_EQ(run_query("211 inexact\n" + line + "\n.\n").failed, expected) << line;
        EXPECT_EQ(run_query("200 " + line + "\n").failed, expected) << line;
    }
    EXPECT_EQ(run_query("210 Found exact matches, list follows\r\n").failed,
              (failure{"data", "Unsupported format or corrupted file"}));
    // Matches before a bad line stay delivered.
    query_run run = run_query("210 exact\nrock 1502D003 A / B\njazz\nblues 1502D003 C / D\n.\n");
    EXPECT_EQ(run.failed, no_category);
    EXPECT_EQ(run.got, (matches{{"rock", "1502D003", "A / B", true}}));
}

// --- read -----------------------------------------------------------------------------------

using read_run = run_of<disc_record>;

read_run run_read(const std::string& category, const std::string& answer) {
    read_run run;
    read_handler handler(category, [&](disc_record&& r) { run.got.push_back(std::move(r)); });
    run.failed = failure_of([&] { feed_answer(handler, answer); });
    return run;
}

TEST(read_answer, a_captured_entry_fills_the_record_under_the_category_asked_for) {
    read_run run = run_read("data", fixture_bytes("cddb-protocol/captured-http-cddb-read-proto-6.body.txt"));
    EXPECT_EQ(run.failed, no_failure);
    ASSERT_EQ(run.got.size(), 1u);
    const disc_record& r = run.got[0];
    EXPECT_STREQ(r.get_field(disc_record::category), "data");
    EXPECT_STREQ(r.get_field(disc_record::discid), "940aac0d");
    EXPECT_STREQ(r.get_field(disc_record::dyear), "2010");
    ASSERT_EQ(r.get_track_count(), 13u);
    EXPECT_STREQ(r.get_track_field(0, disc_record::ttitle), "Are You Satisfied?");
    // An older protocol level's entry has no year.
    run = run_read("misc", fixture_bytes("cddb-protocol/captured-http-cddb-read-proto-3.body.txt"));
    ASSERT_EQ(run.got.size(), 1u);
    EXPECT_STREQ(run.got[0].get_field(disc_record::dyear), "");
}

TEST(read_answer, other_statuses_and_broken_entries_fail_and_deliver_no_record) {
    const std::string unexpected = "CDDB: Invalid status code. Expected 210, 401, 402, 403, or 409, got ";
    const std::string entry = "\r\n# xmcd\r\nDTITLE=A / B\r\n.\r\n";
    const status_case cases[] = {
        {"401 rock 1502D003 No such CD entry in database." + entry, {"not found", "CDDB: Specified entry not found"}},
        {"402 Server error." + entry, {"io", "CDDB: Server error"}},
        {"403 Database entry is corrupt." + entry, {"data", "CDDB: Database entry is corrupt"}},
        {"409 No handshake." + entry, {"io", "CDDB: No handshake"}},
        {"200 rock 1502D003 A / B" + entry, {"data", unexpected + "200"}},
        {"211 inexact" + entry, {"data", unexpected + "211"}},
        {"210 rock 1502D003\n# xmcd\nDTITLE=A / B\nARTIST=nobody\n.\n",
         {"data", "CDDB: Unrecognized keyword 'ARTIST=nobody'"}},
    };
    for (const auto& c : cases) {
        read_run run = run_read("rock", c.status_line);
        EXPECT_EQ(run.failed, c.expected) << c.status_line;
        EXPECT_TRUE(run.got.empty());
    }
}

// --- sites ----------------------------------------------------------------------------------

using sites_run = run_of<server_record>;

sites_run run_sites(const std::string& answer) {
    sites_run run;
    sites_handler handler([&](server_record&& s) { run.got.push_back(std::move(s)); });
    run.failed = failure_of([&] { feed_answer(handler, answer); });
    return run;
}

server_record site(const char* server, const char* protocol, const char* port, const char* address,
                   const char* description) {
    return make_server_record(server, protocol, port, address, description);
}

TEST(sites_answer, example_lines_become_server_records) {
    sites_run run = run_sites("210 OK, site information follows (until terminating `.')\r\n" +
                              fixture_bytes("cddb-protocol/sites-lines-level3-CDDBPROTO-example.txt") + ".\r\n");
    EXPECT_EQ(run.failed, no_failure);
    ASSERT_EQ(run.got.size(), 2u);
    EXPECT_EQ(run.got[0], site("us.discora.org", "cddbp", "8880", "-", "San Jose, CA USA"));
    EXPECT_EQ(run.got[1], site("us.discora.org", "http", "80", "/~cddb/cddb.cgi", "San Jose, CA USA"));
}

TEST(sites_answer, other_codes_fail_without_the_cddb_prefix_and_401_is_an_empty_list) {
    for (const char* code : {"200", "211", "402", "500", "401"}) {
        SCOPED_TRACE(code);
        sites_run run = run_sites(std::string(code) + " something\r\nhost http 80 / N000.00 E000.00 d\r\n.\r\n");
        failure expected{"data", std::string("Invalid status code. Expected 210 or 401, got ") + code};
        EXPECT_EQ(run.failed, code == std::string("401") ? no_failure : expected);
        EXPECT_TRUE(run.got.empty());
    }
}

TEST(sites_answer, runs_of_spaces_separate_and_the_description_keeps_its_own) {
    sites_run run = run_sites("210 ok\n  a.example   http  8080\t /cgi  s012.34   w000.00   Far  away, here  \n"
                              "h p 1 / n000.00 e180.00 d\nh p 1 / S090.59 W001.01 d\n.\n");
    EXPECT_EQ(run.failed, no_failure);
    ASSERT_EQ(run.got.size(), 3u);
    EXPECT_EQ(run.got[0], site("a.example", "http", "8080\t", "/cgi", "Far  away, here  "));
}

TEST(sites_answer, a_malformed_line_fails_the_whole_command) {
    for (const char* line :
         {"host", "host http 80 /cgi", "host http 80 /cgi N037.21 W121.55", "host http 80 /cgi N037.21 W121.55   ",
          "host http 80 /cgi X037.21 W121.55 d", "host http 80 /cgi E037.21 W121.55 d",
          "host http 80 /cgi N037.21 N121.55 d", "host http 80 /cgi N37.21 W121.55 d",
          "host http 80 /cgi N037.2 W121.55 d", "host http 80 /cgi N037,21 W121.55 d",
          "host http 80 /cgi N0372.1 W121.55 d", "host http 80 /cgi N037.211 W121.55 d",
          "host http 80 /cgi Na37.21 W121.55 d", "host http 80 /cgi N037.21 W121.5x d",
          "host http 80 /cgi N037.21 W1215.5 d", "host http 80 /cgi N037.21\tW121.55 d"}) {
        sites_run run = run_sites(std::string("210 ok\nfine.example http 80 /cgi N001.00 E002.00 Fine\n") + line + "\n.\n");
        EXPECT_EQ(run.failed, (failure{"data", "Unsupported format or corrupted file"})) << line;
        EXPECT_EQ(run.got.size(), 1u);  // what came before stays delivered
    }
}

// --- lscat ----------------------------------------------------------------------------------

TEST(lscat_answer, no_status_fails_and_no_body_is_read) {
    for (const char* answer : {"210 OK, category list follows (until terminating `.')\ndata\nfolk\n.\n", "500 nope\n",
                               "409 No handshake.\n"}) {
        SCOPED_TRACE(answer);
        lscat_handler handler;
        EXPECT_NO_THROW(feed_answer(handler, answer));
        EXPECT_FALSE(handler.body_pending());
    }
    lscat_handler handler;
    EXPECT_EQ(failure_of([&] { feed_answer(handler, "OK\n"); }), (failure{"data", "Malformed status code: OK"}));
    lscat_handler silent;
    EXPECT_EQ(failure_of([&] { feed_answer(silent, ""); }), (failure{"data", "Unsupported format or corrupted file"}));
}

} // namespace
