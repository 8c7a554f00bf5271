// The command line's contract, command by command: exit status, what stderr names, what is
// refused before any request or setting, and every --json output parsed by a real JSON parser
// (Python's) and checked against the contract's keys.

#include <gtest/gtest.h>

#include <csignal>
#include <thread>

#include "support/audio_files.h"
#include "support/tessellon_cli.h"
#include "unit/musicbrainz/mb_test_data.h"

using namespace testing_support;

namespace {

const std::string probe = std::string(TESSELLON_SOURCE_DIR) + "/tests/integration/cli/cli_probe.py";

std::string joined(const std::vector<double>& lengths) {
    std::string out;
    for (double l : lengths) out += (out.empty() ? "" : ",") + std::to_string(l);
    return out;
}

// The contract's JSON shapes ("" text, 0 integer, true boolean, [X] list of X, null anything).
const std::string record_shape =
    R"({"category":"","discid":"","dtitle":"","dyear":"","dgenre":"","extd":"","submitted_via":"","disc_length":null,)"
    R"("revision":null,"various_artists":true,"tracks":[{"offset":null,"ttitle":"","extt":""}]})";
const std::string server_fields = R"("server":"","protocol":"","port":"","address":"","description":"")";

struct contract_row {
    std::vector<std::string> args;
    int exit_code;
    std::string err_has = {};     // empty: anything
    std::string out_has = {};     // empty: anything
    std::string json_shape = {};  // empty: stdout is not JSON
    std::vector<std::string> env = {};
};

struct cli_contract : ::testing::Test, tessellon_cli {
    temp_folder music{"tessellon-contract-album"};
    local_server cddb{"tests/servers/cddb_server.py", {"--sites", "tests/servers/cddb_db/sites.txt"}};
    local_server musicbrainz{"tests/servers/musicbrainz_server.py"};
    std::string mb_env = "TESSELLON_MUSICBRAINZ_HOST=127.0.0.1:" + std::to_string(musicbrainz.port());
    std::string cddb_url() const { return "--server=" + cddb.base_url() + "/~cddb/cddb.cgi"; }
    void check(const std::vector<contract_row>& rows) {
        for (const auto& row : rows) {
            std::string line;
            for (auto& a : row.args) line += a + " ";
            SCOPED_TRACE(line);
            auto r = run(row.args, row.env);
            EXPECT_EQ(r.exit_code, row.exit_code) << r.err;
            EXPECT_NE(r.err.find(row.err_has), std::string::npos) << r.err;
            EXPECT_NE(r.out.find(row.out_has), std::string::npos) << r.out;
            if (row.json_shape.empty()) continue;
            write_file(profile / "out.json", r.out);
            auto parsed = run_program({"/usr/bin/env", "python3", probe, "json", row.json_shape, (profile / "out.json").string()});
            EXPECT_EQ(parsed.exit_code, 0) << parsed.out << parsed.err;
        }
    }
};

} // namespace

TEST_F(cli_contract, bad_input_is_refused_before_any_request_or_setting) {
    ASSERT_TRUE(use_only(cddb));
    const std::size_t requests_before = cddb.requests().size();
    const std::string disc = joined(fixture_disc_lengths("12025d03"));
    check({
        {{"config", "email", "not-an-address"}, 2, "USER@HOST"},
        {{"config", "email", ""}, 2, "USER@HOST"},
        {{"config", "email", "a b@mail.invalid"}, 2, "USER@HOST"},
        {{"config", "id3", "2.2"}, 2, "2.3 or 2.4"},
        {{"config", "timeout", "-5"}, 2, "expected whole seconds from 1 to"},
        {{"servers", "add", "cddb.example.invalid", "notaport"}, 2, "'notaport' is not a port"},
        {{"servers", "add", "cddb.example.invalid", "99999"}, 2, "'99999' is not a port"},
        {{"servers", "add", "cddb.example.invalid", "--port", "0"}, 2, "'0' is not a port"},
        {{"servers", "add", "cddb.example.invalid", "80", "cgi"}, 2, "begins with \"/\""},
        {{"servers", "add", "cddb.example.invalid/cgi"}, 2, "is not a host name"},
        {{"servers", "add", "ftp://cddb.example.invalid/"}, 2, "expected http://"},
        {{"servers", "add", "http://127.0.0.1:8080/cgi", "81"}, 2, "port and the port given differ"},
        {{"servers", "edit", "x"}, 2, "'x' is not a number"},
        {{"servers", "remove", "7"}, 2, "no server 7"},
        {{"tag", "--lengths", disc, "--match", "abc"}, 2, "--match 'abc' is not a number"},
        {{"musicbrainz", "--lengths", disc}, 2, "is not HOST[:PORT]", "", "", {"TESSELLON_MUSICBRAINZ_HOST=http://127.0.0.1:9/ws"}},
        {{"config", "email", "--json"}, 0, "", "\"email\":\"user@tessellon.invalid\"", R"({"email":""})"},
    });
    EXPECT_EQ(run({"servers", "list"}).out, "1  127.0.0.1:" + std::to_string(cddb.port()) + "  /~cddb/cddb.cgi  Local\n");
    EXPECT_EQ(cddb.requests().size(), requests_before);
    EXPECT_TRUE(musicbrainz.requests().empty());
}

TEST_F(cli_contract, each_command_keeps_its_exit_status_names_its_server_and_prints_json) {
    ASSERT_TRUE(use_only(cddb));
    const std::string place = "127.0.0.1:" + std::to_string(cddb.port());
    local_server refusing_sites{"tests/servers/cddb_server.py", {"--fault", "cddb-status:401"}};
    const std::string disc = joined(fixture_disc_lengths("12025d03"));
    auto album = music / "album";
    make_album(album, fixture_disc_lengths("12025d03"), audio_format::flac);
    auto ziggy = music / "ziggy";
    make_album(ziggy, mb_testing::lengths_of(mb_testing::disc_with_id("pphmFbEaZKk7KDKQ_AKCMVtrjIg-")), audio_format::flac);
    check({
        {{"discid", "--lengths", disc, "--json"}, 0, "", "",
         R"({"cddb":{"disc_id":"","query":"","track_count":0,"offsets":[0],"disc_seconds":0},"musicbrainz":{"disc_id":""}})"},
        {{"cddb", "query", "--lengths", disc, cddb_url(), "--json"}, 0, "", "",
         R"({"matches":[{"exact":true,"category":"","discid":"","dtitle":""}]})"},
        {{"cddb", "read", "misc", "d50dd30f", cddb_url(), "--json"}, 0, "", "", R"({"record":)" + record_shape + "}"},
        {{"cddb", "read", "misc", "00000000", cddb_url()}, 2, place + ": CDDB: Specified entry not found"},
        {{"cddb", "query", "--lengths", disc, "--server=http://127.0.0.1:9/"}, 2, "127.0.0.1:9: HTTP request to"},
        {{"cddb", "sites", cddb_url(), "--json"}, 0, "", "", R"({"sites":[{)" + server_fields + "}]}"},
        {{"cddb", "sites", "--server=" + refusing_sites.base_url() + "/~cddb/cddb.cgi"}, 1,
         "127.0.0.1:" + std::to_string(refusing_sites.port()) + " has no list of servers"},
        {{"lookup", "--lengths", disc, "--json"}, 0, "", "",
         R"({"tracks":[""],"servers":[{"description":"","matches":[{"number":0,"label":"","record":)" + record_shape + "}]}]}"},
        {{"lookup", "--lengths", "10,20,30", "--json"}, 1, "No information found on server", "",
         R"({"tracks":[""],"servers":[{"description":"","matches":[]}]})"},
        {{"show", album.string(), "--json"}, 0, "", "", R"({"tracks":[{"path":"","length":null,"fields":[[""]]}]})"},
        {{"tag", album.string(), "--dry-run", "--json"}, 0, "", "", R"({"tracks":[{"path":"","fields":[null]}]})"},
        {{"tag", album.string(), "--match", "5"}, 2, "--match 5: there are 1 matches"},
        {{"musicbrainz", ziggy.string(), "--write", "--json"}, 0, "", "",
         R"({"disc_id":"","release":{"title":"","album_artist":[""],"date":"","disc_number":0,"total_discs":0,)"
         R"("tracks":[{"title":"","artist":[""]}]}})",
         {"TESSELLON_MUSICBRAINZ_HOST=http://127.0.0.1:" + std::to_string(musicbrainz.port()) + "/"}},
        {{"musicbrainz", album.string(), "--write"}, 1, "", "", "", {mb_env}},
        {{"tag", album.string(), "--match", "1", "--keep", "--json"}, 0, "", "",
         R"({"mode":"","written":true,"tracks":[{"path":"","fields":[null]}]})"},
        {{"undo", "--list", "--json"}, 0, "", "",
         R"({"runs":[{"number":0,"time":"","command":"","album":"","files":[""],"complete":true}]})"},
        {{"config", "wipe", "--json"}, 0, "", "", R"({"wipe":""})"},
        {{"config", "timeout", "--json"}, 0, "", "", R"({"timeout":""})"},
        {{"servers", "--json"}, 0, "", "", R"({"servers":[{"number":0,)" + server_fields + "}]}"},
        {{"servers", "add", "http://127.0.0.1:8080/~cddb/cddb.cgi", "--json"}, 0, "",
         R"("server":"127.0.0.1","protocol":"http","port":"8080","address":"/~cddb/cddb.cgi")",
         R"({"servers":[{"number":0,)" + server_fields + "}]}"},
        {{"about", "--json"}, 0, "", "\"name\":\"Tessellon\"",
         R"({"components":[{"name":"","version":"","about":""}],"module":"","interface_version":0,)"
         R"("installed_correctly":true,"services":[""]})"},
        {{"config", "email", "ann@mailhost.invalid", "--json"}, 0, "", "", R"({"email":""})"},
        {{"config", "id3", "2.3", "--json"}, 0, "", "\"2.3\"", R"({"id3":""})"},
        {{"servers", "reset"}, 0, "", "1  cddb.tessellon.invalid:80"},
        {{"config", "email"}, 0, "", "ann@mailhost.invalid\n"},
        // Only the built-in placeholder server, which no one can reach: every server failed, and
        // the command line says how to set one up.
        {{"lookup", "--lengths", disc}, 2, "tessellon servers add HOST PORT"},
    });
}

TEST_F(cli_contract, ctrl_c_and_end_of_input_abort_with_status_1) {
    local_server slow{"tests/servers/cddb_server.py", {"--fault", "slow:2", "--sites", "tests/servers/cddb_db/sites.txt"}};
    ASSERT_TRUE(use_only(slow));
    const std::string disc = joined(fixture_disc_lengths("12025d03"));
    const std::string slow_url = "--server=" + slow.base_url() + "/~cddb/cddb.cgi";
    const std::vector<std::vector<std::string>> slow_commands = {
        {"lookup", "--lengths", disc}, {"cddb", "query", "--lengths", disc, slow_url},
        {"cddb", "sites", slow_url}, {"servers", "retrieve", "1"}};
    for (const auto& args : slow_commands) {
        SCOPED_TRACE(args[0] + " " + args[1]);
        const std::size_t before = slow.requests().size();
        auto r = run(args, {}, [&](pid_t child) {
            for (int i = 0; i < 500 && slow.requests().size() == before; ++i) std::this_thread::sleep_for(std::chrono::milliseconds(20));
            kill(child, SIGINT);
        });
        EXPECT_EQ(r.exit_code, 1) << r.err;
        EXPECT_EQ(r.out, "");
    }
    EXPECT_NE(run({"servers", "list"}).out.find("Local"), std::string::npos) << "an aborted retrieve keeps the list";

    // At the match prompt of `tag` on a terminal (two exact matches to choose from).
    local_server quick{"tests/servers/cddb_server.py"};
    ASSERT_TRUE(use_only(quick));
    const std::string two_matches = joined(fixture_disc_lengths("d50dd30f"));
    for (const char* keys : {"\\x03", "\\x04"}) {
        SCOPED_TRACE(keys);
        auto r = run_program({"/usr/bin/env", "python3", probe, "terminal", "Match to write", keys, TESSELLON_BINARY,
                              "--profile", profile.path().string(), "tag", "--lengths", two_matches});
        EXPECT_EQ(r.out.substr(0, 2), "1\n") << r.out << r.err;
    }
}

TEST_F(cli_contract, on_a_terminal_console_lines_go_above_the_progress_bar) {
    ASSERT_TRUE(use_only(cddb));
    auto r = run_program({"/usr/bin/env", "python3", probe, "terminal", "found match", "", TESSELLON_BINARY, "--profile",
                          profile.path().string(), "lookup", "--lengths", joined(fixture_disc_lengths("12025d03"))});
    ASSERT_EQ(r.out.substr(0, 2), "0\n") << r.out << r.err;
    const std::size_t line = r.out.find("found match: country 12025d03");
    ASSERT_NE(line, std::string::npos) << r.out;
    EXPECT_EQ(r.out.substr(line - 4, 4), "\r\033[K") << "the bar's line is cleared first: " << r.out;
}
