// `tessellon musicbrainz` and the MusicBrainz id of `tessellon discid` on real albums made with
// sox, against the project's local MusicBrainz web service: what ends up in the files, checked
// with readers that are not ours, and what the service was asked.

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "musicbrainz/disc_id.h"
#include "support/audio_files.h"
#include "support/tessellon_cli.h"
#include "unit/musicbrainz/mb_test_data.h"

using namespace testing_support;

namespace {

using lines = std::vector<std::string>;

const std::string ziggy_disc1 = "pphmFbEaZKk7KDKQ_AKCMVtrjIg-";  // 11 tracks, disc 1 of 2

struct musicbrainz_cli : ::testing::Test, tessellon_cli {
    temp_folder music{"tessellon-mb-album"};
    local_server server{"tests/servers/musicbrainz_server.py"};
    mb_testing::scoped_environment service_host{"TESSELLON_MUSICBRAINZ_HOST",
                                                ("127.0.0.1:" + std::to_string(server.port())).c_str()};
    // The untagged album of a disc of the local service, in `format`.
    std::filesystem::path album(const std::string& disc_id, audio_format format, const std::string& name = "album") {
        auto folder = music / name;
        make_album(folder, mb_testing::lengths_of(mb_testing::disc_with_id(disc_id)), format);
        return folder;
    }
    std::size_t requests_for(const std::string& disc_id) const {
        auto all = server.requests();
        return static_cast<std::size_t>(std::count_if(all.begin(), all.end(), [&](const std::string& r) {
            return r.find("/ws/2/discid/" + disc_id) == 0;
        }));
    }
};

bool has(const lines& l, const std::string& line) { return std::find(l.begin(), l.end(), line) != l.end(); }

TEST_F(musicbrainz_cli, write_tags_the_album_and_a_second_run_asks_the_service_nothing) {
    auto folder = album(ziggy_disc1, audio_format::flac);
    run_audio_tool({"metaflac", "--set-tag=GENRE=Glam Rock", "--set-tag=COMMENT=mine", (folder / "Track 01.flac").string()});
    const std::string untagged = read_file(folder / "Track 02.flac");
    auto dry = run({"musicbrainz", folder.string(), "--write", "--dry-run", "--json"});
    ASSERT_EQ(dry.exit_code, 0) << dry.err;
    EXPECT_NE(dry.out.find("\"written\":false"), std::string::npos) << dry.out;
    EXPECT_NE(dry.out.find("{\"field\":\"title\",\"change\":\"added\",\"old\":[],\"new\":[\"Soul Love\"]}"), std::string::npos) << dry.out;
    EXPECT_EQ(read_file(folder / "Track 02.flac"), untagged);
    EXPECT_TRUE(folder_bytes(profile.path()).empty()) << "the dry run kept something in the profile";
    auto first = run({"musicbrainz", folder.string(), "--write"});
    ASSERT_EQ(first.exit_code, 0) << first.err;
    EXPECT_EQ(requests_for(ziggy_disc1), 2u);

    const lines track1 = independent_tag_lines(folder / "Track 01.flac");
    for (const char* line : {"ALBUM=The Rise and Fall of Ziggy Stardust and the Spiders From Mars", "ALBUMARTIST=David Bowie",
                             "ARTIST=David Bowie", "DATE=2002-07-16", "TITLE=Five Years", "DISCNUMBER=1", "DISCTOTAL=2"})
        EXPECT_TRUE(has(track1, line)) << line;
    EXPECT_TRUE(has(independent_tag_lines(folder / "Track 11.flac"), "TITLE=Rock 'n' Roll Suicide"));
    // Fields the mapping does not name stay as they were.
    EXPECT_TRUE(has(track1, "GENRE=Glam Rock"));
    EXPECT_TRUE(has(track1, "COMMENT=mine"));

    auto second = run({"musicbrainz", folder.string(), "--write", "--json"});
    ASSERT_EQ(second.exit_code, 0) << second.err;
    EXPECT_EQ(requests_for(ziggy_disc1), 2u);
    EXPECT_NE(second.out.find("\"disc_id\":\"" + ziggy_disc1 + "\""), std::string::npos) << second.out;
    EXPECT_NE(second.out.find("\"disc_number\":1,\"total_discs\":2"), std::string::npos) << second.out;
}

// The dialog road: the edits are typed into the list cells and "Save" writes what they show.
TEST_F(musicbrainz_cli, edits_go_through_the_dialog_into_the_files) {
    auto folder = album(ziggy_disc1, audio_format::ogg);
    auto r = run({"musicbrainz", folder.string(), "--artist", "A;  B", "--date", "1972", "--disc", "2/3",
                  "--track-title", "2=Soul Love (Live)", "--track-artist", "3=X; Y", "--json"});
    ASSERT_EQ(r.exit_code, 0) << r.err;
    EXPECT_NE(r.out.find("\"album_artist\":[\"A\",\"B\"]"), std::string::npos) << r.out;
    const lines track2 = independent_tag_lines(folder / "Track 02.ogg");
    for (const char* line : {"TITLE=Soul Love (Live)", "ARTIST=David Bowie", "ALBUMARTIST=A", "ALBUMARTIST=B", "DATE=1972",
                             "DISCNUMBER=2", "DISCTOTAL=3"})
        EXPECT_TRUE(has(track2, line)) << line;
    const lines track3 = independent_tag_lines(folder / "Track 03.ogg");
    EXPECT_TRUE(has(track3, "ARTIST=X"));
    EXPECT_TRUE(has(track3, "ARTIST=Y"));
    EXPECT_TRUE(has(track3, "TITLE=Moonage Daydream"));
}

TEST_F(musicbrainz_cli, a_disc_text_that_is_not_a_number_writes_nothing) {
    auto folder = album(ziggy_disc1, audio_format::flac);
    const lines before = independent_tag_lines(folder / "Track 01.flac");
    auto r = run({"musicbrainz", folder.string(), "--disc", "one/two"});
    EXPECT_EQ(r.exit_code, 2);
    EXPECT_NE(r.err.find("invalid input"), std::string::npos) << r.err;
    EXPECT_EQ(independent_tag_lines(folder / "Track 01.flac"), before);
}

// A rip a little off from a disc the service knows: unknown by its id, found by its TOC. The
// closest medium is shown (the dialog says how it was found) and written; later runs take it from
// the cache, still as a TOC match, until --refresh asks the service again.
TEST_F(musicbrainz_cli, a_disc_unknown_by_id_is_found_by_its_toc_written_and_refreshed) {
    std::vector<double> lengths = mb_testing::lengths_of(mb_testing::disc_with_id(ziggy_disc1));
    lengths[2] += 0.4;  // 30 frames: another disc id, a TOC still close to disc 1's
    auto folder = music / "near";
    make_album(folder, lengths, audio_format::flac);
    const musicbrainz_toc toc = compute_musicbrainz_toc(mb_testing::tracks_of(lengths));
    const std::string id = musicbrainz_disc_id(toc);
    const std::string asked = "/ws/2/discid/" + id;
    const lines both = {asked + "?inc=recordings+artist-credits",
                        asked + "?toc=" + musicbrainz_toc_text(toc) + "&cdstubs=no&inc=recordings+artist-credits"};

    auto first = run({"musicbrainz", folder.string(), "--json"});  // through the dialog, saved as shown
    ASSERT_EQ(first.exit_code, 0) << first.err;
    EXPECT_EQ(server.requests(), both);
    EXPECT_NE(first.out.find("\"disc_id\":\"" + id + "\",\"matched_by\":\"toc\""), std::string::npos) << first.out;
    const lines track1 = independent_tag_lines(folder / "Track 01.flac");
    for (const char* line : {"ALBUM=The Rise and Fall of Ziggy Stardust and the Spiders From Mars", "TITLE=Five Years",
                             "DISCNUMBER=1", "DISCTOTAL=2"})
        EXPECT_TRUE(has(track1, line)) << line;

    auto cached = run({"musicbrainz", folder.string(), "--write"});
    ASSERT_EQ(cached.exit_code, 0) << cached.err;
    EXPECT_EQ(server.requests().size(), 2u);
    EXPECT_NE(cached.out.find("Match:  by table of contents"), std::string::npos) << cached.out;

    auto refreshed = run({"musicbrainz", folder.string(), "--write", "--refresh"});
    ASSERT_EQ(refreshed.exit_code, 0) << refreshed.err;
    EXPECT_EQ(server.requests(), (lines{both[0], both[1], both[0], both[1]}));
}

TEST_F(musicbrainz_cli, discid_prints_the_musicbrainz_id_for_up_to_99_tracks) {
    auto folder = album(ziggy_disc1, audio_format::flac);
    auto r = run({"discid", folder.string(), "--json"});
    ASSERT_EQ(r.exit_code, 0) << r.err;
    EXPECT_NE(r.out.find("\"musicbrainz\":{\"disc_id\":\"" + ziggy_disc1 + "\"}"), std::string::npos) << r.out;

    std::string lengths;
    for (int i = 0; i < 100; ++i) lengths += (i ? "," : "") + std::string("30");
    auto many = run({"discid", "--lengths", lengths, "--json"});
    ASSERT_EQ(many.exit_code, 0) << many.err;
    EXPECT_EQ(many.out.find("musicbrainz"), std::string::npos) << many.out;
    EXPECT_NE(many.err.find("no MusicBrainz disc id for 100 tracks"), std::string::npos) << many.err;
    EXPECT_NE(many.out.find("\"cddb\""), std::string::npos);
}

} // namespace
