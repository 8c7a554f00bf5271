// The CDDB test server that the component's tests and the demo rely on: its answers from the
// bundled database and the faults it can be told to produce, read through the host's HTTP.

#include <algorithm>
#include <fstream>
#include <map>
#include <memory>
#include <sstream>

#include <gtest/gtest.h>

#include "cddb_test_server.h"

using namespace http_tests;
using testing_support::local_server;

namespace {

// The answer's lines; every line must end in CR LF.
std::vector<std::string> crlf_lines(const std::string& body) {
    std::vector<std::string> lines;
    std::size_t start = 0;
    while (start < body.size()) {
        const std::size_t end = body.find("\r\n", start);
        if (end == std::string::npos) {
            ADD_FAILURE() << "answer does not end with CR LF: ..." << body.substr(start);
            break;
        }
        lines.push_back(body.substr(start, end - start));
        EXPECT_EQ(lines.back().find('\n'), std::string::npos) << "bare line feed in: " << lines.back();
        start = end + 2;
    }
    return lines;
}

std::vector<std::string> file_lines(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (!line.empty()) lines.push_back(line);
    }
    return lines;
}

// "cddb+query+..." for a disc of the shared fixtures, its offsets moved by `shift` frames,
// sent under `discid` (the fixture's own id when empty).
std::string query_for(const std::string& fixture_id, int shift = 0, std::string discid = "") {
    testing_support::fixture_toc toc = testing_support::read_fixture_toc(fixture_id);
    std::string command = "cddb+query+" + (discid.empty() ? fixture_id : discid) + "+" + std::to_string(toc.offsets.size());
    for (long offset : toc.offsets) command += "+" + std::to_string(offset + shift);
    return command + "+" + std::to_string(toc.disc_seconds);
}

const std::string categories_status = "210 OK, category list follows (until terminating `.')";
const std::vector<std::string> categories = {"blues", "classical", "country", "misc", "reggae", "rock"};

std::vector<std::string> join(std::vector<std::string> a, const std::vector<std::string>& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

} // namespace

TEST(cddb_test_server, answers_commands_from_its_database) {
    struct answer_case {
        std::string name;
        std::vector<std::string> args;
        std::string fault;
        std::string target;
        std::vector<std::string> lines;
    };
    const std::string sites_file = "tests/servers/cddb_db/sites.txt";
    const auto sites = file_lines(std::string(TESSELLON_SOURCE_DIR) + "/" + sites_file);
    const answer_case cases[] = {
        {"one exact match (disc id in upper case)", {}, "", cddb_target(query_for("8608460b", 0, "8608460B")),
         {"200 rock 8608460b Van Halen / Van Halen"}},
        {"one disc id in two categories", {}, "", cddb_target(query_for("d50dd30f")),
         {"210 Found exact matches, list follows (until terminating `.')", "misc d50dd30f Various / Ska Island",
          "reggae d50dd30f Various / Ska Island", "."}},
        {"offsets 30 frames off", {}, "", cddb_target(query_for("770bf909", 30, "0a0b0c09")),
         {"211 Found inexact matches, list follows (until terminating `.')", "rock 770bf909 Nightwish / Angels Fall First", "."}},
        {"offsets 31 frames off", {}, "", cddb_target(query_for("770bf909", -31, "0a0b0c09")),
         {"202 No match for disc ID 0a0b0c09."}},
        {"tolerance option", {"--tolerance", "5"}, "", cddb_target(query_for("770bf909", 10, "0a0b0c09")),
         {"202 No match for disc ID 0a0b0c09."}},
        {"query with too few offsets", {}, "", cddb_target("cddb+query+0a0b0c09+3+150+300+40"),
         {"500 Command syntax error: incorrect number of arguments."}},
        {"read of a missing entry", {}, "", cddb_target("cddb+read+rock+0a0b0c09"), {"401 Specified CDDB entry not found."}},
        {"read in the wrong category", {}, "", cddb_target("cddb+read+rock+d50dd30f"), {"401 Specified CDDB entry not found."}},
        {"sites without a sites file", {}, "", cddb_target("sites"), {"401 No site information available."}},
        {"sites", {"--sites", sites_file}, "", cddb_target("sites"),
         join(join({"210 OK, site information follows (until terminating `.')"}, sites), {"."})},
        {"category list", {}, "", cddb_target("cddb+lscat"), join(join({categories_status}, categories), {"."})},
        {"no hello", {}, "", cgi_path + "?cmd=cddb+lscat&proto=6", {"409 No handshake."}},
        {"unknown command", {}, "", cddb_target("cddb+write+rock+8608460b"), {"500 Unrecognized command."}},
        {"forced 402", {}, "cddb-status:402", cddb_target("cddb+lscat"), {"402 Server error."}},
        {"forced 403", {}, "cddb-status:403", cddb_target("cddb+read+rock+8608460b"), {"403 Database entry is corrupt."}},
        {"forced 409", {}, "cddb-status:409", cddb_target("cddb+lscat"), {"409 No handshake."}},
        {"forced 500", {}, "cddb-status:500", cddb_target("sites"), {"500 Command syntax error."}},
        {"fault given at start", {"--fault", "cddb-status:402"}, "", cddb_target("cddb+lscat"), {"402 Server error."}},
        {"body without its terminator", {}, "no-terminator", cddb_target("cddb+lscat"), join({categories_status}, categories)},
        {"invalid UTF-8 line", {}, "bad-utf8", cddb_target(query_for("8608460b")),
         {"200 rock 8608460b Van Halen / Van Halen", "Caf\xe9 \xff\xfe"}},
        {"16385-byte line", {}, "long-line", cddb_target("cddb+lscat"),
         join(join({categories_status, std::string(16385, 'x')}, categories), {"."})},
        {"empty body", {}, "empty-body", cddb_target("cddb+lscat"), {}},
        {"slow answer has the same lines", {}, "slow:0.02", cddb_target("cddb+lscat"),
         join(join({categories_status}, categories), {"."})},
        {"fault cleared", {"--fault", "empty-body"}, "none", cddb_target("cddb+lscat"),
         join(join({categories_status}, categories), {"."})},
    };
    ASSERT_EQ(sites.size(), 5u);
    // One server per set of start options; a fault switched for one case is cleared after it.
    std::map<std::vector<std::string>, std::unique_ptr<local_server>> servers;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        auto& server = servers[c.args];
        if (!server) server = std::make_unique<local_server>(cddb_server_script, c.args);
        if (!c.fault.empty()) server->set_fault(c.fault);
        EXPECT_EQ(crlf_lines(fetch(server->base_url() + c.target)), c.lines);
        if (!c.fault.empty()) server->set_fault("none");
    }
}

TEST(cddb_test_server, command_escapes_are_decoded_as_cddb_servers_do) {
    // "%09" is a tab (a separator like a space); "%ffffff33" is the byte 0x33, "3", in the form
    // of a client that widens bytes as signed numbers; "%33" the same in the usual form.
    const std::string targets[] = {
        cddb_target("cddb%09read%09country%0912025d03"),
        cddb_target("cddb+read+country+12025d0%ffffff33"),
        cddb_target("cddb+read+country+12025d0%33"),
    };
    local_server server(cddb_server_script);
    for (const auto& target : targets) {
        SCOPED_TRACE(target);
        const auto lines = crlf_lines(fetch(server.base_url() + target));
        ASSERT_FALSE(lines.empty());
        EXPECT_EQ(lines.front(), "210 country 12025d03 CD database entry follows (until terminating `.')");
    }
}

TEST(cddb_test_server, entries_are_sent_as_their_bytes_with_crlf_line_ends) {
    struct entry_case {
        std::string category, discid, fixture;
    };
    const entry_case cases[] = {
        {"misc", "38043805", "38043805.latin1.xmcd"},   // ISO-8859-1 bytes stay ISO-8859-1
        {"misc", "d50dd30f", "d50dd30f.xmcd"},          // no line end after the last line
        {"rock", "a10b600c", "a10b600c.crlf.xmcd"},
        {"misc", "2f0d8939", "2f0d8939.57tracks.xmcd"},
    };
    local_server server(cddb_server_script);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.fixture);
        const auto lines = crlf_lines(fetch(server.base_url() + cddb_target("cddb+read+" + c.category + "+" + c.discid)));
        const auto entry = file_lines(testing_support::fixture("xmcd/entries/" + c.fixture).string());
        ASSERT_FALSE(entry.empty());
        EXPECT_EQ(lines, join(join({"210 " + c.category + " " + c.discid + " CD database entry follows (until terminating `.')"}, entry), {"."}));
    }
    const auto latin1 = crlf_lines(fetch(server.base_url() + cddb_target("cddb+read+misc+38043805")));
    EXPECT_NE(std::find(latin1.begin(), latin1.end(), "DTITLE=Die \xC4rzte / Ein Schwein namens M\xE4nner"), latin1.end());
}

TEST(cddb_test_server, bundled_sites_list_has_five_sites_two_of_them_http) {
    const auto sites = file_lines(std::string(TESSELLON_SOURCE_DIR) + "/tests/servers/cddb_db/sites.txt");
    ASSERT_EQ(sites.size(), 5u);
    int http = 0;
    for (const auto& line : sites) {
        std::istringstream words(line);
        std::string host, protocol, port, address, latitude, longitude, description;
        words >> host >> protocol >> port >> address >> latitude >> longitude;
        std::getline(words, description);
        EXPECT_TRUE(host.size() > 8 && host.compare(host.size() - 8, 8, ".invalid") == 0) << host;
        EXPECT_FALSE(description.empty()) << line;
        if (protocol == "http") ++http;
    }
    EXPECT_EQ(http, 2);
}
