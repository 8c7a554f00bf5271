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

using cddb_testing::feed_answer;
using cddb_testing::fixture_bytes;

// What a failure looked like: its kind and its text.
struct failure {
    std::string kind;
    std::string text;
    bool operator==(const failure&) const = default;
};

void PrintTo(const failure& f, std::ostream* os) { *os << f.kind << ": " << f.text; }

failure failure_of(const std::function<void()>& action) {
    try {
        action();
    } catch (const tunehall_io::exception_io_not_found& e) {
        return {"not found", e.what()};
    } catch (const tunehall_io::exception_io_data& e) {
        return {"data", e.what()};
    } catch (const tunehall_io::exception_io& e) {
        return {"io", e.what()};
    }
    return {"none", ""};
}

struct match {
    std::string category, discid, dtitle;
    bool exact;
    bool operator==(const match&) const = default;
};

void PrintTo(const match& m, std::ostream* os) {
    *os << (m.exact ? "exact " : "inexact ") << m.category << " " << m.discid << " [" << m.dtitle << "]";
}

struct query_run {
    std::vector<match> matches;
    failure failed;
};

query_run run_query(const std::string& answer) {
    query_run run;
    query_handler handler([&](disc_record&& r, bool exact) {
        run.matches.push_back({r.get_field(disc_record::category), r.get_field(disc_record::discid),
                               r.get_field(disc_record::dtitle), exact});
    });
    run.failed = failure_of([&] { feed_answer(handler, answer); });
    return run;
}

const failure no_failure{"none", ""};

// --- query ----------------------------------------------------------------------------------

TEST(query_answer, no_match_delivers_nothing) {
    query_run run = run_query("202 No match for disc ID 1502D003.\r\n");
    EXPECT_EQ(run.failed, no_failure);
    EXPECT_TRUE(run.matches.empty());
}

TEST(query_answer, one_exact_match_comes_on_the_status_line) {
    query_run run = run_query("200 rock 1502D003 Artist / Album\r\n");
    EXPECT_EQ(run.failed, no_failure);
    EXPECT_EQ(run.matches, (std::vector<match>{{"rock", "1502D003", "Artist / Album", true}}));
}

TEST(query_answer, captured_single_match_answers) {
    EXPECT_EQ(run_query(fixture_bytes("cddb-protocol/captured-http-cddb-query-proto-3.body.txt")).matches,
              (std::vector<match>{{"data", "940aac0d", "Marina & The Diamonds / The Family Jewels", true}}));
    EXPECT_EQ(run_query(fixture_bytes("cddb-protocol/bricka-query-200-misc-2f0d8939.txt")).matches,
              (std::vector<match>{
                  {"misc", "2f0d8939", "Dan Levenson / Old Time Festival Tunes For Clawhammer Banjo (Disc 2)", true}}));
}

TEST(query_answer, several_exact_matches_come_as_a_list) {
    query_run run = run_query(fixture_bytes("cddb-protocol/captured-http-cddb-query-proto-6.body.txt"));
    EXPECT_EQ(run.failed, no_failure);
    // The rock entry spells the artist differently: each category holds its own entry.
    const std::string title = "Marina & The Diamonds / The Family Jewels";
    const std::string rock_title = "Marina & the Diamonds / The Family Jewels";
    EXPECT_EQ(run.matches, (std::vector<match>{{"data", "940aac0d", title, true},
                                               {"misc", "940aac0d", title, true},
                                               {"rock", "940aac0d", rock_title, true}}));
}

TEST(query_answer, inexact_matches_are_flagged_so) {
    query_run run = run_query(
        "211 Found inexact matches, list follows (until terminating `.')\n"
        "reggae d50dd30f Various / Ska Island\n"
        "misc d50dd30f Various / Ska Island\n"
        ".\n"
        "rock ffffffff after the terminator\n");
    EXPECT_EQ(run.failed, no_failure);
    EXPECT_EQ(run.matches, (std::vector<match>{{"reggae", "d50dd30f", "Various / Ska Island", false},
                                               {"misc", "d50dd30f", "Various / Ska Island", false}}));
}

TEST(query_answer, a_list_announced_but_missing_is_malformed) {
    query_run run = run_query("210 Found exact matches, list follows (until terminating `.')\r\n");
    EXPECT_EQ(run.failed, (failure{"data", "Unsupported format or corrupted file"}));
}

TEST(query_answer, titles_are_kept_as_sent) {
    query_run run = run_query("211 inexact\nrock 0A1B2C03 Band  /  Title \\n with \\x escapes \n.\n");
    ASSERT_EQ(run.matches.size(), 1u);
    EXPECT_EQ(run.matches[0].dtitle, "Band  /  Title \\n with \\x escapes ");
}

struct status_case {
    std::string status_line;
    failure expected;
};

class query_status : public testing::TestWithParam<status_case> {};

TEST_P(query_status, fails_with_its_own_text_and_kind) {
    query_run run = run_query(GetParam().status_line + "\r\nrock 1502D003 A / B\r\n.\r\n");
    EXPECT_EQ(run.failed, GetParam().expected);
    EXPECT_TRUE(run.matches.empty());
}

const std::string query_unexpected = "CDDB: Invalid status code. Expected 200, 210, 211, 202, 403, or 409, got ";

INSTANTIATE_TEST_SUITE_P(
    codes, query_status,
    testing::Values(status_case{"403 Database entry is corrupt.", {"data", "CDDB: Database entry is corrupt"}},
                    status_case{"409 No handshake.", {"io", "CDDB: No handshake"}},
                    status_case{"201 ready", {"data", query_unexpected + "201"}},
                    status_case{"401 not found", {"data", query_unexpected + "401"}},
                    status_case{"500 Command syntax error", {"data", query_unexpected + "500"}},
                    status_case{"530 Server error", {"data", query_unexpected + "530"}},
                    status_case{"000 zero", {"data", query_unexpected + "0"}},
                    status_case{"999 nine", {"data", query_unexpected + "999"}},
                    status_case{"HTTP/1.1 404", {"data", "Malformed status code: HTT"}}));

struct match_line_case {
    std::string line;
    std::string expected_failure;
};

class query_match_line : public testing::TestWithParam<match_line_case> {};

TEST_P(query_match_line, without_category_or_disc_id_fails) {
    EXPECT_EQ(run_query("211 inexact\n" + GetParam().line + "\n.\n").failed,
              (failure{"data", GetParam().expected_failure}));
    EXPECT_EQ(run_query("200 " + GetParam().line + "\n").failed, (failure{"data", GetParam().expected_failure}));
}

INSTANTIATE_TEST_SUITE_P(
    lines, query_match_line,
    testing::Values(match_line_case{"rock", "CDDB: No category found in response"},
                    match_line_case{" rock 1502D003 A / B", "CDDB: No category found in response"},
                    match_line_case{"rock 1502D003", "CDDB: No discid found in response"},
                    match_line_case{"rock  A / B", "CDDB: No discid found in response"}));

TEST(query_answer, a_match_line_with_an_empty_title_is_accepted) {
    query_run run = run_query("200 rock 1502D003 \n");
    EXPECT_EQ(run.matches, (std::vector<match>{{"rock", "1502D003", "", true}}));
}

TEST(query_answer, matches_before_a_bad_line_stay_delivered) {
    query_run run = run_query("210 exact\nrock 1502D003 A / B\njazz\nblues 1502D003 C / D\n.\n");
    EXPECT_EQ(run.failed, (failure{"data", "CDDB: No category found in response"}));
    EXPECT_EQ(run.matches, (std::vector<match>{{"rock", "1502D003", "A / B", true}}));
}

// --- read -----------------------------------------------------------------------------------

struct read_run {
    std::vector<disc_record> records;
    failure failed;
};

read_run run_read(const std::string& category, const std::string& answer) {
    read_run run;
    read_handler handler(category, [&](disc_record&& r) { run.records.push_back(std::move(r)); });
    run.failed = failure_of([&] { feed_answer(handler, answer); });
    return run;
}

TEST(read_answer, captured_entry_fills_the_record) {
    read_run run = run_read("misc", fixture_bytes("cddb-protocol/captured-http-cddb-read-proto-6.body.txt"));
    EXPECT_EQ(run.failed, no_failure);
    ASSERT_EQ(run.records.size(), 1u);
    const disc_record& r = run.records[0];
    EXPECT_STREQ(r.get_field(disc_record::category), "misc");
    EXPECT_STREQ(r.get_field(disc_record::discid), "940aac0d");
    EXPECT_STREQ(r.get_field(disc_record::dtitle), "Marina & The Diamonds / The Family Jewels");
    EXPECT_STREQ(r.get_field(disc_record::dyear), "2010");
    EXPECT_STREQ(r.get_field(disc_record::dgenre), "Pop");
    EXPECT_STREQ(r.get_field(disc_record::submitted_via), "ExactAudioCopyDiscoraPlugin 1.0");
    EXPECT_EQ(r.get_revision(), 2u);
    EXPECT_EQ(r.get_disc_length(), 2734u);
    ASSERT_EQ(r.get_track_count(), 13u);
    EXPECT_EQ(r.get_track_offset(12), 188495u);
    EXPECT_STREQ(r.get_track_field(0, disc_record::ttitle), "Are You Satisfied?");
    EXPECT_FALSE(r.get_various_artists());
}

TEST(read_answer, the_category_asked_for_is_kept) {
    read_run run = run_read("data", fixture_bytes("cddb-protocol/cdigw-fixture-read-210-data-940aac0d-proto5.txt"));
    ASSERT_EQ(run.records.size(), 1u);
    EXPECT_STREQ(run.records[0].get_field(disc_record::category), "data");
    EXPECT_EQ(run.records[0].get_revision(), 3u);
    EXPECT_STREQ(run.records[0].get_track_field(2, disc_record::ttitle), "I Am Not a Robot");
}

TEST(read_answer, an_older_level_entry_without_year_and_genre) {
    read_run run = run_read("misc", fixture_bytes("cddb-protocol/captured-http-cddb-read-proto-3.body.txt"));
    ASSERT_EQ(run.records.size(), 1u);
    EXPECT_STREQ(run.records[0].get_field(disc_record::dyear), "");
    EXPECT_EQ(run.records[0].get_track_count(), 13u);
}

TEST(read_answer, a_57_track_entry) {
    read_run run = run_read("misc", fixture_bytes("cddb-protocol/bricka-read-210-misc-2f0d8939-57tracks.txt"));
    ASSERT_EQ(run.records.size(), 1u);
    EXPECT_EQ(run.records[0].get_track_count(), 57u);
    EXPECT_EQ(run.records[0].get_track_offset(56), 255754u);
}

class read_status : public testing::TestWithParam<status_case> {};

TEST_P(read_status, fails_with_its_own_text_and_kind) {
    read_run run = run_read("rock", GetParam().status_line + "\r\n# xmcd\r\nDTITLE=A / B\r\n.\r\n");
    EXPECT_EQ(run.failed, GetParam().expected);
    EXPECT_TRUE(run.records.empty());
}

const std::string read_unexpected = "CDDB: Invalid status code. Expected 210, 401, 402, 403, or 409, got ";

INSTANTIATE_TEST_SUITE_P(
    codes, read_status,
    testing::Values(status_case{"401 rock 1502D003 No such CD entry in database.",
                                {"not found", "CDDB: Specified entry not found"}},
                    status_case{"402 Server error.", {"io", "CDDB: Server error"}},
                    status_case{"403 Database entry is corrupt.", {"data", "CDDB: Database entry is corrupt"}},
                    status_case{"409 No handshake.", {"io", "CDDB: No handshake"}},
                    status_case{"200 rock 1502D003 A / B", {"data", read_unexpected + "200"}},
                    status_case{"211 inexact", {"data", read_unexpected + "211"}},
                    status_case{"500 Command syntax error", {"data", read_unexpected + "500"}}));

TEST(read_answer, a_broken_entry_delivers_no_record) {
    read_run run = run_read("rock", "210 rock 1502D003 entry follows\n# xmcd\nDTITLE=A / B\nARTIST=nobody\n.\n");
    EXPECT_EQ(run.failed, (failure{"data", "CDDB: Unrecognized keyword 'ARTIST=nobody'"}));
    EXPECT_TRUE(run.records.empty());
    run = run_read("rock", "210 rock 1502D003 entry follows\n# Revision: 1\n# xmcd\n.\n");
    EXPECT_EQ(run.failed, (failure{"data", "CDDB: Signature mismatch"}));
    EXPECT_TRUE(run.records.empty());
}

TEST(read_answer, an_entry_announced_but_missing_is_malformed) {
    read_run run = run_read("rock", "210 rock 1502D003 entry follows\r\n");
    EXPECT_EQ(run.failed, (failure{"data", "Unsupported format or corrupted file"}));
    EXPECT_TRUE(run.records.empty());
}

TEST(read_answer, the_finished_record_is_marked_various_artists) {
    read_run run =
        run_read("reggae", "210 reggae d50dd30f\n# xmcd\nDTITLE=Various / Ska Island\nTTITLE0=King of Kings\n.\n");
    ASSERT_EQ(run.records.size(), 1u);
    EXPECT_TRUE(run.records[0].get_various_artists());
}

// --- sites ----------------------------------------------------------------------------------

struct sites_run {
    std::vector<server_record> sites;
    failure failed;
};

sites_run run_sites(const std::string& answer) {
    sites_run run;
    sites_handler handler([&](server_record&& s) { run.sites.push_back(std::move(s)); });
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
    ASSERT_EQ(run.sites.size(), 2u);
    EXPECT_EQ(run.sites[0], site("us.discora.org", "cddbp", "8880", "-", "San Jose, CA USA"));
    EXPECT_EQ(run.sites[1], site("us.discora.org", "http", "80", "/~cddb/cddb.cgi", "San Jose, CA USA"));
}

TEST(sites_answer, no_site_list_is_an_empty_result) {
    sites_run run = run_sites("401 No site information available.\r\n");
    EXPECT_EQ(run.failed, no_failure);
    EXPECT_TRUE(run.sites.empty());
}

TEST(sites_answer, other_codes_fail_without_the_cddb_prefix) {
    for (const char* code : {"200", "211", "402", "500"}) {
        SCOPED_TRACE(code);
        sites_run run = run_sites(std::string(code) + " something\r\nhost http 80 / N000.00 E000.00 d\r\n.\r\n");
        EXPECT_EQ(run.failed, (failure{"data", std::string("Invalid status code. Expected 210 or 401, got ") + code}));
        EXPECT_TRUE(run.sites.empty());
    }
}

TEST(sites_answer, runs_of_spaces_separate_and_the_description_keeps_its_own) {
    sites_run run = run_sites("210 ok\n  a.example   http  8080\t /cgi  s012.34   w000.00   Far  away, here  \n.\n");
    EXPECT_EQ(run.failed, no_failure);
    ASSERT_EQ(run.sites.size(), 1u);
    EXPECT_EQ(run.sites[0], site("a.example", "http", "8080\t", "/cgi", "Far  away, here  "));
}

class sites_malformed_line : public testing::TestWithParam<std::string> {};

TEST_P(sites_malformed_line, fails_the_whole_command) {
    sites_run run = run_sites("210 ok\nfine.example http 80 /cgi N001.00 E002.00 Fine\n" + GetParam() + "\n.\n");
    EXPECT_EQ(run.failed, (failure{"data", "Unsupported format or corrupted file"}));
    EXPECT_EQ(run.sites.size(), 1u);  // what came before stays delivered
}

INSTANTIATE_TEST_SUITE_P(
    lines, sites_malformed_line,
    testing::Values("host", "host http", "host http 80", "host http 80 /cgi", "host http 80 /cgi N037.21",
                    "host http 80 /cgi N037.21 W121.55", "host http 80 /cgi N037.21 W121.55   ",
                    "host http 80 /cgi X037.21 W121.55 d", "host http 80 /cgi E037.21 W121.55 d",
                    "host http 80 /cgi N037.21 N121.55 d", "host http 80 /cgi N37.21 W121.55 d",
                    "host http 80 /cgi N037.2 W121.55 d", "host http 80 /cgi N037,21 W121.55 d",
                    "host http 80 /cgi N0372.1 W121.55 d", "host http 80 /cgi N037.211 W121.55 d",
                    "host http 80 /cgi Na37.21 W121.55 d", "host http 80 /cgi N037.21 W121.5x d",
                    "host http 80 /cgi N037.21 W1215.5 d", "host http 80 /cgi N037.21\tW121.55 d"));

TEST(sites_answer, lower_case_hemispheres_are_accepted) {
    sites_run run = run_sites("210 ok\nh p 1 / n000.00 e180.00 d\nh p 1 / s090.59 w001.01 d\n.\n");
    EXPECT_EQ(run.failed, no_failure);
    EXPECT_EQ(run.sites.size(), 2u);
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
