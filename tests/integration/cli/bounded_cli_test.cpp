// `tessellon` against servers that misbehave, and profiles shared or damaged: every command ends
// within its deadline with a failure that names the server, and changes no file and no setting.

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <map>
#include <thread>

#include "support/audio_files.h"
#include "support/tessellon_cli.h"
#include "unit/musicbrainz/mb_test_data.h"

using namespace testing_support;

namespace {

constexpr int timeout_seconds = 2;
const std::string mb_disc = "pphmFbEaZKk7KDKQ_AKCMVtrjIg-";

bool contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

struct fault_case {
    const char* cddb_fault;
    const char* musicbrainz_fault;  // empty: the fault means nothing to the web service
    // The answer arrives whole and only its reader finds it unusable: the commands that ask
    // one server directly report the reader's text, the lookups name the server.
    bool found_by_the_reader;
};

std::ostream& operator<<(std::ostream& out, const fault_case& c) { return out << c.cddb_fault; }

struct bounded_cli : ::testing::TestWithParam<fault_case>, tessellon_cli {
    temp_folder music{"tessellon-bounded-album"};
    local_server cddb{"tests/servers/cddb_server.py", {"--sites", "tests/servers/cddb_db/sites.txt"}};
    local_server musicbrainz{"tests/servers/musicbrainz_server.py"};
    mb_testing::scoped_environment service_host{"TESSELLON_MUSICBRAINZ_HOST",
                                                ("127.0.0.1:" + std::to_string(musicbrainz.port())).c_str()};

    program_result run(std::vector<std::string> args) const {
        args.insert(args.begin(), {"--timeout", std::to_string(timeout_seconds)});
        return tessellon_cli::run(args);
    }
};

TEST_P(bounded_cli, every_command_fails_in_time_naming_the_server_and_changes_nothing) {
    const fault_case& c = GetParam();
    const auto album = music / "album";
    make_album(album, mb_testing::lengths_of(mb_testing::disc_with_id(mb_disc)), audio_format::flac);
    ASSERT_EQ(run({"servers", "edit", "1", "--server", "127.0.0.1", "--port", std::to_string(cddb.port())}).exit_code, 0);
    cddb.set_fault(c.cddb_fault);
    if (*c.musicbrainz_fault) musicbrainz.set_fault(c.musicbrainz_fault);

    const std::string cddb_origin = "127.0.0.1:" + std::to_string(cddb.port());
    const std::string server = "--server=" + cddb.base_url() + "/~cddb/cddb.cgi";
    struct command {
        std::vector<std::string> args;
        bool direct;  // asks one server itself rather than through a lookup
    };
    std::vector<command> commands = {
        {{"cddb", "query", album.string(), server}, true},
        {{"cddb", "read", "country", "12025d03", server}, true},
        {{"cddb", "sites", server}, true},
        {{"servers", "retrieve", "1"}, true},
        {{"lookup", album.string()}, false},
        {{"tag", album.string()}, false},
    };
    if (*c.musicbrainz_fault) commands.push_back({{"musicbrainz", album.string(), "--write"}, true});

    const auto files_before = folder_bytes(music.path());
    const auto profile_before = folder_bytes(profile.path());
    for (auto& cmd : commands) {
        const std::string name = cmd.args[0] + " " + cmd.args[1];
        const auto start = std::chrono::steady_clock::now();
        auto r = run(cmd.args);
        const auto seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        EXPECT_EQ(r.exit_code, 2) << name << ": " << r.err;
        EXPECT_LT(seconds, timeout_seconds + 2) << name;
        const bool is_musicbrainz = cmd.args[0] == "musicbrainz";
        const std::string origin = is_musicbrainz ? "127.0.0.1:" + std::to_string(musicbrainz.port()) : cddb_origin;
        if (!(c.found_by_the_reader && cmd.direct)) {
            EXPECT_TRUE(contains(r.err, origin)) << name << ": " << r.err;
        }
        EXPECT_TRUE(folder_bytes(music.path()) == files_before) << name << " changed a file of the album";
        EXPECT_TRUE(folder_bytes(profile.path()) == profile_before) << name << " changed the profile";
    }
}

INSTANTIATE_TEST_SUITE_P(faults, bounded_cli,
                         ::testing::Values(fault_case{"trickle", "trickle", false}, fault_case{"stall", "stall", false},
                                           fault_case{"endless", "endless", false}, fault_case{"huge:200", "huge:200", false},
                                           fault_case{"many:20000", "", false}, fault_case{"cut", "", false},
                                           fault_case{"garbage", "garbage", true}),
                         [](const auto& info) {
                             std::string name = info.param.cddb_fault;
                             return name.substr(0, name.find(':'));
                         });

struct shared_profile : ::testing::Test, tessellon_cli {};

TEST_F(shared_profile, twenty_concurrent_additions_are_all_kept) {
    std::vector<std::thread> runs;
    std::vector<int> exits(20, -1);
    for (int i = 0; i < 20; ++i)
        runs.emplace_back([&, i] { exits[i] = run({"servers", "add", "host" + std::to_string(i) + ".invalid"}).exit_code; });
    for (auto& t : runs) t.join();
    const std::string list = run({"servers", "list"}).out;
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(exits[i], 0) << i;
        EXPECT_TRUE(contains(list, "host" + std::to_string(i) + ".invalid:80")) << i << "\n" << list;
    }
}

// A copy of its own for every damaged file is the store's rule (its unit test); here the
// command line names the copy and shows the defaults.
TEST_F(shared_profile, a_damaged_settings_file_is_kept_and_named) {
    const auto settings = profile / "config.tsc";
    std::string damage(300, '\0');
    for (std::size_t i = 0; i < damage.size(); ++i) damage[i] = static_cast<char>(i * 131 % 251);
    write_file(settings, damage);
    auto r = run({"servers", "list"});
    EXPECT_EQ(r.exit_code, 0) << r.err;
    EXPECT_TRUE(contains(r.out, "cddb.tessellon.invalid:80")) << "built-in servers: " << r.out;
    const std::string marker = "kept as ";
    ASSERT_TRUE(contains(r.err, "damaged") && contains(r.err, marker)) << r.err;
    const std::size_t at = r.err.find(marker) + marker.size();
    EXPECT_EQ(read_file(r.err.substr(at, r.err.find(' ', at) - at)), damage) << r.err;
    EXPECT_FALSE(std::filesystem::exists(settings)) << "the defaults are not written until something changes";
}

} // namespace
