// `tessellon tag` and `tessellon show` on real albums: what ends up in the files, checked with
// the host's reader and with readers that are not ours.

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <algorithm>
#include <regex>
#include <sstream>

#include "support/audio_files.h"
#include "support/local_server.h"
#include "support/run_program.h"
#include "support/temp_folder.h"

using namespace testing_support;

namespace {

struct tag_cli : ::testing::Test {
    temp_folder profile{"tessellon-tag-cli"};
    temp_folder music{"tessellon-album"};
    local_server server{"tests/servers/cddb_server.py"};

    tag_cli() {
        run({"servers", "add", "127.0.0.1", std::to_string(server.port()), "/~cddb/cddb.cgi", "Local"});
        run({"servers", "remove", "1"});  // the built-in placeholder
    }
    program_result run(std::vector<std::string> args) {
        args.insert(args.begin(), {TESSELLON_BINARY, "--profile", profile.path().string()});
        return run_program(args);
    }
    // The album of the fixture disc 12025d03 (Ernest Ray Everett, 3 tracks) in `format`.
    std::filesystem::path album(audio_format format) {
        auto folder = music / name_of(format);
        make_album(folder, fixture_disc_lengths("12025d03"), format);
        return folder;
    }
    // "name=value" lines of `show` for each file, sorted within the file.
    std::vector<std::vector<std::string>> shown(const std::filesystem::path& folder) {
        auto r = run({"show", folder.string()});
        EXPECT_EQ(r.exit_code, 0) << r.err;
        std::vector<std::vector<std::string>> files;
        std::istringstream lines(r.out);
        for (std::string line; std::getline(lines, line);) {
            if (line.rfind("  ", 0) != 0) {
                files.emplace_back();
                continue;
            }
            files.back().push_back(line.substr(2));
        }
        for (auto& f : files) std::sort(f.begin(), f.end());
        return files;
    }
};

std::vector<std::string> expected_fields(int track) {
    static const char* titles[] = {"I'm Your Puppet", "Me And Jacky", "If You Don't Like Country"};
    std::vector<std::string> f = {"album=Ernest Ray Everett - Single CD", "artist=Ernest Ray Everett - Single CD",
                                  "date=2009", "genre=Country", std::string("title=") + titles[track],
                                  "totaltracks=3", "tracknumber=" + std::to_string(track + 1)};
    std::sort(f.begin(), f.end());
    return f;
}

} // namespace

class tag_cli_formats : public tag_cli, public ::testing::WithParamInterface<audio_format> {};

// After tagging with --wipe, each file holds exactly the fields the match gives it: the old
// ones (here sox's comment) are gone.
TEST_P(tag_cli_formats, wipe_leaves_exactly_the_fields_of_the_match) {
    auto folder = album(GetParam());
    auto r = run({"tag", folder.string(), "--match", "1", "--wipe"});
    ASSERT_EQ(r.exit_code, 0) << r.err;
    auto files = shown(folder);
    ASSERT_EQ(files.size(), 3u);
    for (int t = 0; t < 3; ++t) EXPECT_EQ(files[static_cast<std::size_t>(t)], expected_fields(t)) << "track " << t + 1;
}

INSTANTIATE_TEST_SUITE_P(formats, tag_cli_formats, ::testing::Values(audio_format::flac, audio_format::mp3, audio_format::ogg),
                         [](const auto& info) { return name_of(info.param); });

TEST_F(tag_cli, keep_removes_year_but_leaves_date_and_disc_number_of_other_programs) {
    auto folder = album(audio_format::flac);
    auto first = folder / "Track 01.flac";
    run_audio_tool({"metaflac", "--set-tag=YEAR=1980", "--set-tag=DATE=1980", "--set-tag=DISCNUMBER=1", first.string()});
    auto r = run({"tag", folder.string(), "--match", "1", "--keep", "--year", ""});
    ASSERT_EQ(r.exit_code, 0) << r.err;
    auto lines = independent_tag_lines(first);
    auto has = [&](const std::string& l) { return std::find(lines.begin(), lines.end(), l) != lines.end(); };
    EXPECT_FALSE(std::any_of(lines.begin(), lines.end(), [](auto& l) { return l.rfind("YEAR=", 0) == 0; }));
    EXPECT_TRUE(has("DATE=1980"));  // an empty year writes no date, and keep does not remove one
    EXPECT_TRUE(has("DISCNUMBER=1"));
    EXPECT_TRUE(has("TITLE=I'm Your Puppet"));
}

TEST_F(tag_cli, edits_given_on_the_command_line_reach_the_files) {
    auto folder = album(audio_format::flac);
    auto r = run({"tag", folder.string(), "--match", "1", "--wipe", "--artist", "Ernest Ray Everett", "--album",
                  "Single CD", "--genre", "Soul", "--title", "2=Me and Jackie", "--comment", "3=live", "--various"});
    ASSERT_EQ(r.exit_code, 0) << r.err;
    auto lines = independent_tag_lines(folder / "Track 02.flac");
    std::sort(lines.begin(), lines.end());
    EXPECT_EQ(lines, (std::vector<std::string>{"ALBUM=Single CD", "ALBUMARTIST=Ernest Ray Everett", "ARTIST=Ernest Ray Everett",
                                               "DATE=2009", "GENRE=Soul", "TITLE=Me and Jackie", "TRACKNUMBER=2",
                                               "TRACKTOTAL=3"}));
    auto third = independent_tag_lines(folder / "Track 03.flac");
    EXPECT_NE(std::find(third.begin(), third.end(), "COMMENT=live"), third.end());
}

TEST_F(tag_cli, dry_run_prints_the_prepared_fields_in_order_and_writes_nothing) {
    auto folder = album(audio_format::flac);
    const std::string before = read_file(folder / "Track 01.flac");
    auto r = run({"tag", folder.string(), "--match", "1", "--dry-run", "--json"});
    ASSERT_EQ(r.exit_code, 0) << r.err;
    EXPECT_NE(r.out.find("\"fields\":[[\"album\",[\"Ernest Ray Everett - Single CD\"]],[\"date\",[\"2009\"]],"
                         "[\"genre\",[\"Country\"]],[\"artist\",[\"Ernest Ray Everett - Single CD\"]],"
                         "[\"title\",[\"I'm Your Puppet\"]],[\"tracknumber\",[\"1\"]],[\"totaltracks\",[\"3\"]]]"),
              std::string::npos)
        << r.out;
    EXPECT_EQ(read_file(folder / "Track 01.flac"), before);
}

TEST_F(tag_cli, a_read_only_file_is_named_and_the_rest_of_the_album_is_tagged) {
    auto folder = album(audio_format::flac);
    chmod((folder / "Track 02.flac").c_str(), 0444);
    auto r = run({"tag", folder.string(), "--match", "1"});
    EXPECT_EQ(r.exit_code, 2);
    EXPECT_NE(r.err.find("Track 02.flac"), std::string::npos) << r.err;
    auto first = independent_tag_lines(folder / "Track 01.flac");
    EXPECT_NE(std::find(first.begin(), first.end(), "TITLE=I'm Your Puppet"), first.end());
}

TEST_F(tag_cli, a_match_number_beyond_the_matches_is_bad_usage) {
    auto folder = album(audio_format::flac);
    auto r = run({"tag", folder.string(), "--match", "5"});
    EXPECT_EQ(r.exit_code, 2);
    EXPECT_NE(r.err.find("--match 5: there are 1 matches"), std::string::npos) << r.err;
}

// With `config id3 2.3` an MP3 gets an ID3v2.3 tag (the date as TYER) that
// id3lib's id3v2 and mutagen read; the ID3v1 tag the file had is gone.
TEST_F(tag_cli, id3_2_3_is_written_when_asked_and_read_by_other_readers) {
    ASSERT_EQ(run({"config", "id3", "2.3"}).exit_code, 0);
    auto folder = album(audio_format::mp3);
    auto first = folder / "Track 01.mp3";
    run_audio_tool({"id3v2", "-1", "--song", "Old title", first.string()});
    auto r = run({"tag", folder.string(), "--match", "1", "--wipe"});
    ASSERT_EQ(r.exit_code, 0) << r.err;
    const std::string listed = run_audio_tool({"id3v2", "-l", first.string()});
    EXPECT_NE(listed.find("id3v2 tag info"), std::string::npos) << listed;
    EXPECT_NE(listed.find("TIT2 (Title/songname/content description): I'm Your Puppet"), std::string::npos) << listed;
    EXPECT_NE(listed.find("TYER (Year): 2009"), std::string::npos) << listed;
    EXPECT_EQ(listed.find("id3v1"), std::string::npos) << listed;
    EXPECT_EQ(read_file(first).substr(0, 4), std::string("ID3\x03", 4)) << "the tag header says version 2.3";
    // mutagen's frames as stored (it would show TDRC for TYER once it converted them).
    const std::string raw = run_audio_tool({"mid3v2", "--list-raw", first.string()});
    EXPECT_TRUE(std::regex_search(raw, std::regex(R"(TYER\(encoding=[^,]*, text=\['2009'\]\))"))) << raw;
    EXPECT_TRUE(std::regex_search(raw, std::regex(R"(TRCK\(encoding=[^,]*, text=\['1/3'\]\))"))) << raw;
    EXPECT_EQ(raw.find("TDRC"), std::string::npos) << raw;
}
