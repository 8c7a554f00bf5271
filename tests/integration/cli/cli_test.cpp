// The `tessellon` program as a user runs it: its output for people, the server list through the
// preferences page.

#include <gtest/gtest.h>


#include "support/tessellon_cli.h"

using testing_support::local_server;

namespace {

// Lengths of the fixture disc 12025d03 (3 tracks, offsets 150 12143 31682, 607 s).
const char* const disc_12025d03 = "159.9067,260.5200,184.5733";

struct cli : ::testing::Test, testing_support::tessellon_cli {
    void add_server(const local_server& s, const std::string& description) {
        auto r = run({"servers", "add", "127.0.0.1", std::to_string(s.port()), "/~cddb/cddb.cgi", description});
        ASSERT_EQ(r.exit_code, 0) << r.err;
    }
    static std::string server_option(const local_server& s) { return "--server=" + s.base_url() + "/~cddb/cddb.cgi"; }
};

bool contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

} // namespace

TEST_F(cli, version_help_and_bad_usage) {
    auto v = run({"--version"});
    EXPECT_EQ(v.exit_code, 0);
    EXPECT_EQ(v.out, "Tessellon 0.9\n");
    auto h = run({"--help"});
    EXPECT_EQ(h.exit_code, 0);
    for (const char* command : {"discid", "cddb query", "cddb read", "cddb sites", "lookup", "servers", "config email", "about"})
        EXPECT_TRUE(contains(h.out, command)) << command;
    for (const char* command : {"tag", "show", "musicbrainz", "discid", "lookup", "about"}) {
        auto command_help = run({command, "--help"});
        EXPECT_EQ(command_help.exit_code, 0) << command << ": " << command_help.err;
        EXPECT_EQ(command_help.out, h.out) << command;
    }
    auto bad = run({"frobnicate"});
    EXPECT_EQ(bad.exit_code, 2);
    EXPECT_TRUE(contains(bad.err, "unknown command 'frobnicate'"));
    auto bad_option = run({"discid", "--lengths"});
    EXPECT_EQ(bad_option.exit_code, 2);
    EXPECT_TRUE(contains(bad_option.err, "--lengths needs a value"));
}

TEST_F(cli, about_loads_the_component_file_and_lists_its_services) {
    auto r = run({"about"});
    ASSERT_EQ(r.exit_code, 0) << r.err;
    EXPECT_TRUE(contains(r.out, "sonatag2.so\n"));
    EXPECT_TRUE(contains(r.out, "installation check: ok\n"));
    for (const char* service : {"component_version", "installation_check", "menu_command", "tagging_source"})
        EXPECT_TRUE(contains(r.out, std::string("  ") + service + "\n")) << service;
}

TEST_F(cli, discid_of_lengths_gives_the_id_and_the_query_text) {
    auto r = run({"discid", "--lengths", "180.0,240.2,300.5"});
    ASSERT_EQ(r.exit_code, 0) << r.err;
    // The MusicBrainz id was worked out by hand: lead-out 150 + round(720.7 s x 75) = 54203.
    EXPECT_EQ(r.out, "CDDB disc id: 1502D003\ncddb query 1502D003 3 150 13650 31665 722\n"
                     "MusicBrainz disc id: Sv9UpVItqOtXkyY9tLAeQABU2Iw-\n");
    auto j = run({"discid", "--lengths", "180.0,240.2,300.5", "--json"});
    EXPECT_EQ(j.out, "{\"cddb\":{\"disc_id\":\"1502D003\",\"query\":\"cddb query 1502D003 3 150 13650 31665 722\","
                     "\"track_count\":3,\"offsets\":[150,13650,31665],\"disc_seconds\":722},"
                     "\"musicbrainz\":{\"disc_id\":\"Sv9UpVItqOtXkyY9tLAeQABU2Iw-\"}}\n");
    auto zero = run({"discid", "--lengths", "180,0,12"});
    EXPECT_EQ(zero.exit_code, 2);
    EXPECT_TRUE(contains(zero.err, "CDDB: Could not build query"));
}

TEST_F(cli, cddb_commands_talk_to_the_given_server) {
    local_server server("tests/servers/cddb_server.py", {"--sites", "tests/servers/cddb_db/sites.txt"});
    auto q = run({"cddb", "query", "--lengths", disc_12025d03, server_option(server), "--json"});
    ASSERT_EQ(q.exit_code, 0) << q.err;
    EXPECT_EQ(q.out, "{\"matches\":[{\"exact\":true,\"category\":\"country\",\"discid\":\"12025d03\","
                     "\"dtitle\":\"Ernest Ray Everett - Single CD\"}]}\n");

    auto rd = run({"cddb", "read", "misc", "d50dd30f", server_option(server), "--json"});
    ASSERT_EQ(rd.exit_code, 0) << rd.err;
    EXPECT_TRUE(contains(rd.out, "\"dtitle\":\"Various / Ska Island\""));
    EXPECT_TRUE(contains(rd.out, "\"various_artists\":true"));
    EXPECT_TRUE(contains(rd.out, "\"tracks\":[{\"offset\":150,"));

    auto sites = run({"cddb", "sites", server_option(server)});
    ASSERT_EQ(sites.exit_code, 0) << sites.err;
    EXPECT_TRUE(contains(sites.out, "http  a.cddb.tessellon.invalid:80  /~cddb/cddb.cgi"));
    EXPECT_EQ(std::count(sites.out.begin(), sites.out.end(), '\n'), 5);
}

TEST_F(cli, lookup_groups_matches_by_server_and_survives_a_dead_first_server) {
    local_server dead("tests/servers/cddb_server.py", {"--fault", "http-status:500"});
    local_server good("tests/servers/cddb_server.py");
    add_server(dead, "Dead mirror");
    add_server(good, "Local mirror");
    auto r = run({"lookup", "--lengths", disc_12025d03});
    ASSERT_EQ(r.exit_code, 0) << r.err;
    EXPECT_TRUE(contains(r.out, "Local mirror\n   1 Ernest Ray Everett - Single CD / Ernest Ray Everett - Single CD (country)\n"))
        << r.out;
    EXPECT_TRUE(contains(r.out, "Dead mirror\n     No matches found\n"));
    auto j = run({"lookup", "--lengths", disc_12025d03, "--json"});
    EXPECT_TRUE(contains(j.out, "{\"description\":\"Local mirror\",\"matches\":[{\"number\":1,\"label\":"
                                "\"Ernest Ray Everett - Single CD / Ernest Ray Everett - Single CD (country)\",\"record\":{"));
}

TEST_F(cli, servers_retrieve_replaces_the_list_with_the_http_sites_of_the_server) {
    local_server server("tests/servers/cddb_server.py", {"--sites", "tests/servers/cddb_db/sites.txt"});
    add_server(server, "Local mirror");
    ASSERT_EQ(run({"servers", "remove", "1"}).exit_code, 0);
    auto r = run({"servers", "retrieve", "1"});
    ASSERT_EQ(r.exit_code, 0) << r.err;
    EXPECT_EQ(run({"servers", "list"}).out,
              "1  a.cddb.tessellon.invalid:80  /~cddb/cddb.cgi  Test primary site, San Jose area\n"
              "2  b.cddb.tessellon.invalid:8080  /cgi-bin/cddb.cgi  Southern test mirror, Sydney\n");
}

TEST_F(cli, servers_edit_remove_and_reset_work_through_the_page) {
    ASSERT_EQ(run({"servers", "add", "a.example.invalid", "8880", "/cgi", "First"}).exit_code, 0);
    ASSERT_EQ(run({"servers", "edit", "2", "--port", "8881", "--description", "Renamed"}).exit_code, 0);
    EXPECT_EQ(run({"servers", "list"}).out,
              "1  cddb.tessellon.invalid:80  /~cddb/cddb.cgi  discora server\n2  a.example.invalid:8881  /cgi  Renamed\n");
    ASSERT_EQ(run({"servers", "remove", "1"}).exit_code, 0);
    EXPECT_EQ(run({"servers", "list"}).out, "1  a.example.invalid:8881  /cgi  Renamed\n");
    ASSERT_EQ(run({"servers", "reset"}).exit_code, 0);
    EXPECT_EQ(run({"servers", "list"}).out, "1  cddb.tessellon.invalid:80  /~cddb/cddb.cgi  discora server\n");
}
