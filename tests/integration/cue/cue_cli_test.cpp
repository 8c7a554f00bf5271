// An album kept as one audio file and its cue sheet, through the command line: looked up,
// tagged into the cue sheet, and shown from it.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>

#include "support/audio_files.h"
#include "support/tessellon_cli.h"
#include "unit/musicbrainz/mb_test_data.h"

using namespace testing_support;

namespace {
struct cue_cli : ::testing::Test, tessellon_cli {
    temp_folder music{"tessellon-cue-album"};
};
} // namespace

TEST_F(cue_cli, tag_writes_into_the_cue_sheet_of_a_one_file_album_and_show_reads_it_back) {
    local_server server{"tests/servers/cddb_server.py"};
    ASSERT_TRUE(use_only(server));

    // The fixture disc 12025d03 (3 tracks) as one FLAC file at CD rate and its sheet.
    const std::vector<double> lengths = fixture_disc_lengths("12025d03");
    make_audio_file(music / "album.flac", frames_at_44100(std::accumulate(lengths.begin(), lengths.end(), 0.0)),
                    audio_format::flac);
    write_file(music / "album.cue",
               "REM COMMENT \"by hand\"\nCATALOG 0000000000000\nFILE \"album.flac\" WAVE\n"
               "  TRACK 01 AUDIO\n    INDEX 01 00:00:00\n  TRACK 02 AUDIO\n    INDEX 01 02:39:68\n"
               "  TRACK 03 AUDIO\n    FLAGS DCP\n    INDEX 01 07:00:32\n");
    const std::string audio_before = read_file(music / "album.flac");
    const std::string sheet_before = read_file(music / "album.cue");

    auto r = run({"tag", music.path().string(), "--match", "1", "--wipe"});  // the folder stands for its sheet
    ASSERT_EQ(r.exit_code, 0) << r.err;
    EXPECT_EQ(read_file(music / "album.flac"), audio_before);
    const std::string sheet = read_file(music / "album.cue");
    for (const char* kept : {"CATALOG 0000000000000", "FLAGS DCP", "INDEX 01 07:00:32"})
        EXPECT_NE(sheet.find(kept), std::string::npos) << kept << " lost:\n" << sheet;

    const auto tracks = shown(music / "album.cue");
    ASSERT_EQ(tracks.size(), 3u);
    for (int t = 0; t < 3; ++t) EXPECT_EQ(tracks[static_cast<std::size_t>(t)], fields_of_12025d03(t)) << "track " << t + 1;

    // The sheet was journaled once, before its first change: undo gives it back byte for byte.
    r = run({"undo"});
    ASSERT_EQ(r.exit_code, 0) << r.err;
    EXPECT_EQ(read_file(music / "album.cue"), sheet_before);
}

TEST_F(cue_cli, musicbrainz_write_puts_the_release_into_the_cue_sheet) {
    local_server server{"tests/servers/musicbrainz_server.py"};
    mb_testing::scoped_environment service{"TESSELLON_MUSICBRAINZ_HOST", ("127.0.0.1:" + std::to_string(server.port())).c_str()};
    // Disc 1 of the local service's Ziggy Stardust release (11 tracks) as one file and its sheet.
    const std::vector<double> lengths = mb_testing::lengths_of(mb_testing::disc_with_id("pphmFbEaZKk7KDKQ_AKCMVtrjIg-"));
    std::string sheet = "FILE \"album.flac\" WAVE\n";
    double start = 0;
    for (std::size_t i = 0; i < lengths.size(); ++i) {
        sheet += std::string("  TRACK ") + (i < 9 ? "0" : "") + std::to_string(i + 1) + " AUDIO\n    INDEX 01 " +
                 cue_time(static_cast<std::uint64_t>(std::llround(start * 75))) + "\n";
        start += lengths[i];
    }
    write_file(music / "album.cue", sheet);
    make_cd_frames_flac(music / "album.flac", static_cast<std::uint64_t>(std::llround(start * 75)));

    auto r = run({"musicbrainz", (music / "album.cue").string(), "--write"});
    ASSERT_EQ(r.exit_code, 0) << r.err;
    const std::string written = read_file(music / "album.cue");
    for (const char* line : {"TITLE \"The Rise and Fall of Ziggy Stardust and the Spiders From Mars\"", "PERFORMER \"David Bowie\"",
                             "REM DATE \"2002-07-16\"", "TITLE \"Five Years\"", "TITLE \"Rock 'n' Roll Suicide\""})
        EXPECT_NE(written.find(line), std::string::npos) << line << " not in\n" << written;
}

TEST_F(cue_cli, a_sheet_with_a_file_per_track_lays_the_files_back_to_back) {
    // 2, 4 and 6 seconds; track 2's file starts with a 1-second gap (INDEX 00) that belongs to
    // track 1 on the disc.
    for (int i = 1; i <= 3; ++i)
        make_audio_file(music / ("t" + std::to_string(i) + ".flac"), frames_at_44100(2.0 * i), audio_format::flac);
    write_file(music / "album.cue",
               "FILE \"t1.flac\" WAVE\n  TRACK 01 AUDIO\n    INDEX 01 00:00:00\n"
               "FILE \"t2.flac\" WAVE\n  TRACK 02 AUDIO\n    INDEX 00 00:00:00\n    INDEX 01 00:01:00\n"
               "FILE \"t3.flac\" WAVE\n  TRACK 03 AUDIO\n    INDEX 01 00:00:00\n");
    auto r = run({"discid", (music / "album.cue").string(), "--json"});
    ASSERT_EQ(r.exit_code, 0) << r.err;
    EXPECT_NE(r.out.find("\"offsets\":[150,375,600],\"disc_seconds\":14"), std::string::npos) << r.out;
}
