// `tessellon tag` and `tessellon show` on real albums: what ends up in the files, checked with
// the host's reader and with readers that are not ours.

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <algorithm>
#include <map>
#include <regex>
#include <sstream>

#include "support/audio_files.h"
#include "support/tessellon_cli.h"

using namespace testing_support;

namespace {

struct tag_cli : ::testing::Test, tessellon_cli {
    temp_folder music{"tessellon-album"};
    local_server server{"tests/servers/cddb_server.py"};

    tag_cli() { use_only(server); }
    // The album of the fixture disc 12025d03 (Ernest Ray Everett, 3 tracks) in `format`.
    std::filesystem::path album(audio_format format) {
        auto folder = music / name_of(format);
        make_album(folder, fixture_disc_lengths("12025d03"), format);
        return folder;
    }
};

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
    for (int t = 0; t < 3; ++t) EXPECT_EQ(files[static_cast<std::size_t>(t)], fields_of_12025d03(t)) << "track " << t + 1;
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
    EXPECT_FALSE(std::filesystem::exists(profile / "journal"));
}

// --wipe, --keep and --dry-run decide one run and leave the profile as it was; the saved default
// (wipe, until `config wipe off`) decides every run without them.
TEST_F(tag_cli, wipe_and_keep_decide_one_run_and_config_wipe_the_runs_after) {
    auto folder = album(audio_format::flac);
    auto first = folder / "Track 01.flac";
    auto mark = [&] { run_audio_tool({"metaflac", "--set-tag=MOOD=calm", first.string()}); };
    auto marked = [&] {
        auto lines = independent_tag_lines(first);
        return std::find(lines.begin(), lines.end(), "MOOD=calm") != lines.end();
    };
    // The profile less the undo journal, which records the writes themselves.
    auto settings = [&] {
        auto files = folder_bytes(profile.path());
        std::erase_if(files, [](const auto& f) { return f.first.rfind("journal/", 0) == 0; });
        return files;
    };
    auto tag = [&](std::vector<std::string> flags) {
        flags.insert(flags.begin(), {"tag", folder.string(), "--match", "1"});
        auto r = run(flags);
        EXPECT_EQ(r.exit_code, 0) << r.err;
    };

    mark();
    const auto settings_before = settings();
    tag({"--keep"});
    const auto profile_before = folder_bytes(profile.path());
    for (auto flags : {std::vector<std::string>{"--wipe", "--dry-run"}, {"--keep", "--dry-run"}}) tag(flags);
    EXPECT_EQ(folder_bytes(profile.path()), profile_before) << "a dry run changed the profile";
    EXPECT_TRUE(marked());
    EXPECT_EQ(settings(), settings_before) << "--keep changed the settings";
    tag({});
    EXPECT_FALSE(marked()) << "a plain run after --keep did not wipe (the saved default)";

    EXPECT_EQ(run({"config", "wipe", "off"}).out, "off\n");
    mark();
    tag({});
    EXPECT_TRUE(marked()) << "a plain run after config wipe off wiped";
    const auto settings_off = settings();
    tag({"--wipe"});
    EXPECT_FALSE(marked());
    EXPECT_EQ(settings(), settings_off) << "--wipe changed the settings";
    EXPECT_EQ(run({"config", "wipe"}).out, "off\n");
}

// A file that cannot be replaced: the command names it, fails with status 2 and leaves every file
// of the album as it was. The folder cases need a small file system of their own (mounting as root).
TEST_F(tag_cli, a_file_that_cannot_be_written_is_named_and_no_file_of_the_album_changes) {
    struct where_case {
        const char* name;
        const char* named;  // what the error must say
    };
    for (const where_case& c : {where_case{"read-only file", "Track 02.flac is read-only"},
                                where_case{"read-only folder", "Track 01.flac is read-only"},
                                where_case{"full disk", "Disk full: write "}}) {
        SCOPED_TRACE(c.name);
        const std::string kind = c.name;
        const auto mount_point = music / kind.substr(kind.find(' ') + 1);
        std::filesystem::create_directories(mount_point);
        struct unmount {
            std::filesystem::path at;
            bool mounted = false;
            ~unmount() {
                if (mounted) run_program({"/usr/bin/umount", at.string()});
            }
        } mounted{mount_point};
        if (kind != "read-only file") {
            if (run_program({"/usr/bin/mount", "-t", "tmpfs", "-o", "size=2m", "tmpfs", mount_point.string()}).exit_code != 0)
                GTEST_SKIP() << "the folder cases mount a tmpfs, which needs root";
            mounted.mounted = true;
        }
        const auto folder = mount_point / "album";
        make_album(folder, fixture_disc_lengths("12025d03"), audio_format::flac);
        // No padding: the new tags need the whole file rewritten beside the old one.
        for (auto& f : std::filesystem::directory_iterator(folder))
            run_audio_tool({"metaflac", "--remove", "--block-type=PADDING", "--dont-use-padding", f.path().string()});
        if (kind == "read-only file") chmod((folder / "Track 02.flac").c_str(), 0444);
        if (kind == "read-only folder") run_program({"/usr/bin/mount", "-o", "remount,ro", mount_point.string()});
        if (kind == "full disk") write_file(mount_point / "filler", std::string(4 << 20, 'x'));  // fills what is left
        const auto before = folder_bytes(folder);
        auto r = run({"tag", folder.string(), "--match", "1"});
        EXPECT_EQ(r.exit_code, 2) << r.err;
        EXPECT_NE(r.err.find(c.named), std::string::npos) << r.err;
        EXPECT_NE(r.err.find("no file was changed"), std::string::npos) << r.err;
        EXPECT_EQ(folder_bytes(folder), before);
    }
}

// The road back: a wipe removes what the match does not set (a cover, ReplayGain, the user's
// own fields), and undo gives every file back byte for byte, as other readers see it too.
TEST_F(tag_cli, undo_after_a_wipe_gives_back_every_byte_cover_art_included) {
    auto flac = album(audio_format::flac);
    write_file(music / "cover.png", std::string(3000, '\x89'));
    for (auto& f : std::filesystem::directory_iterator(flac))
        run_audio_tool({"metaflac", "--set-tag=REPLAYGAIN_TRACK_GAIN=-6.1 dB", "--set-tag=MOOD=calm",
                        "--import-picture-from=3|image/png|cover|1x1x24|" + (music / "cover.png").string(), f.path().string()});
    auto mp3 = album(audio_format::mp3);
    for (auto& f : std::filesystem::directory_iterator(mp3))
        run_audio_tool({"mid3v2", "--TXXX", "REPLAYGAIN_TRACK_GAIN:-6.1 dB", "--picture", (music / "cover.png").string(), f.path().string()});
    const auto flac_before = folder_bytes(flac), mp3_before = folder_bytes(mp3);
    const auto flac_lines = independent_tag_lines(flac / "Track 01.flac"), mp3_lines = independent_tag_lines(mp3 / "Track 01.mp3");

    for (auto& folder : {flac, mp3}) {
        auto r = run({"tag", folder.string(), "--match", "1", "--wipe", "--yes"});
        ASSERT_EQ(r.exit_code, 0) << r.err;
        std::string preview = r.err;
        std::transform(preview.begin(), preview.end(), preview.begin(), [](unsigned char c) { return std::tolower(c); });
        EXPECT_NE(preview.find("replaygain_track_gain: removed \"-6.1 db\""), std::string::npos) << "the preview names what goes: " << r.err;
    }
    EXPECT_NE(folder_bytes(flac), flac_before);
    auto listed = run({"undo", "--list", "--json"});
    EXPECT_NE(listed.out.find("\"number\":2"), std::string::npos) << listed.out;
    EXPECT_NE(listed.out.find("\"complete\":true"), std::string::npos) << listed.out;

    auto last = run({"undo"});  // the MP3 album's run
    ASSERT_EQ(last.exit_code, 0) << last.err;
    EXPECT_EQ(folder_bytes(mp3), mp3_before);
    EXPECT_NE(folder_bytes(flac), flac_before);
    auto first = run({"undo", "1"});
    ASSERT_EQ(first.exit_code, 0) << first.err;
    EXPECT_EQ(folder_bytes(flac), flac_before);
    EXPECT_EQ(independent_tag_lines(flac / "Track 01.flac"), flac_lines);
    EXPECT_EQ(independent_tag_lines(mp3 / "Track 01.mp3"), mp3_lines);
}

// A file changed by someone else after the run is left alone, unless forced.
TEST_F(tag_cli, undo_leaves_a_file_changed_since_alone_unless_forced) {
    auto folder = album(audio_format::flac);
    const auto before = folder_bytes(folder);
    ASSERT_EQ(run({"tag", folder.string(), "--match", "1", "--wipe"}).exit_code, 0);
    run_audio_tool({"metaflac", "--set-tag=MOOD=changed later", (folder / "Track 03.flac").string()});
    auto r = run({"undo"});
    EXPECT_EQ(r.exit_code, 1);
    EXPECT_NE(r.err.find("Track 03.flac: changed since"), std::string::npos) << r.err;
    auto now = folder_bytes(folder);
    EXPECT_EQ(now.at("Track 01.flac"), before.at("Track 01.flac"));
    EXPECT_NE(now.at("Track 03.flac"), before.at("Track 03.flac"));
    ASSERT_EQ(run({"undo", "1", "--force"}).exit_code, 0);
    auto lines = independent_tag_lines(folder / "Track 03.flac");
    EXPECT_EQ(std::count_if(lines.begin(), lines.end(), [](auto& l) { return l.rfind("TITLE=", 0) == 0 || l.rfind("MOOD=", 0) == 0; }), 0);
}

// On a terminal the command asks; any answer but "y" writes nothing.
TEST_F(tag_cli, on_a_terminal_an_answer_other_than_y_writes_nothing) {
    auto folder = album(audio_format::flac);
    const auto before = folder_bytes(folder);
    const std::string probe = std::string(TESSELLON_SOURCE_DIR) + "/tests/integration/cli/cli_probe.py";
    auto r = run_program({installed_program("python3"), probe, "terminal", "[y/N]", "n\\n", TESSELLON_BINARY, "--profile",
                          profile.path().string(), "tag", folder.string(), "--match", "1"});
    EXPECT_EQ(r.out.substr(0, 2), "1\n") << r.out << r.err;
    EXPECT_NE(r.out.find("title: added \"I'm Your Puppet\""), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("Write these tags to 3 files? [y/N]"), std::string::npos) << r.out;
    EXPECT_EQ(folder_bytes(folder), before);
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
