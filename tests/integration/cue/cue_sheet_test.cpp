// Reading cue sheets and writing tags into them, at the level of the sheet's text.

#include <gtest/gtest.h>

#include <tunehall/exceptions.h>

#include "cue/cue_sheet.h"
#include "cue/disc_layout.h"

using namespace linux_cue;

namespace {

const char* const sheet =
    "REM GENRE Rock\n"
    "REM COMMENT \"ripped by hand\"\n"
    "CATALOG 0000000000000\n"
    "PERFORMER \"Old Band\"\n"
    "TITLE \"Old Album\"\n"
    "FILE \"album.flac\" WAVE\n"
    "  TRACK 01 AUDIO\n"
    "    TITLE \"Intro\"\n"
    "    ISRC GBAYE0000001\n"
    "    INDEX 00 00:00:00\n"
    "    INDEX 01 00:32:00\n"
    "  TRACK 02 AUDIO\n"
    "    FLAGS DCP\n"
    "    INDEX 01 04:10:37\n";

} // namespace

TEST(cue_sheet, malformed_sheets_name_the_file_and_line) {
    struct { const char* text; const char* expected; } cases[] = {
        {"TRACK 01 AUDIO\n", "a.cue, line 1: TRACK before any FILE"},
        {"FILE \"a.flac\" WAVE\n  TRACK 01 AUDIO\n    INDEX 01 00:60:00\n", "line 3: '00:60:00' is not a time"},
        {"FILE \"a.flac\" WAVE\n  TRACK 01 AUDIO\n    INDEX 01 1:2\n", "line 3: '1:2' is not a time"},
        {"FILE \"a.flac WAVE\n", "line 1: a quote is not closed"},
        {"FILE \"a.flac\" WAVE\n  TRACK 01 AUDIO\n  TRACK 02 AUDIO\n    INDEX 01 00:00:00\n", "line 2: TRACK 1 has no INDEX 01"},
        {"FILE \"a.flac\" WAVE\n  TRACK 02 AUDIO\n    INDEX 01 00:00:00\n  TRACK 01 AUDIO\n", "line 4: track numbers must increase"},
        {"FILE \"a.flac\" WAVE\n  TRACK 01 AUDIO\n    INDEX 01 00:10:00\n    INDEX 02 00:05:00\n", "line 4: INDEX 02 comes before"},
        {"FILE \"a.flac\" WAVE\n  TRACK 100 AUDIO\n", "line 2: track number '100' is not a number from 1 to 99"},
        {"INDEX 01 00:00:00\n", "line 1: INDEX before any TRACK"},
        {"REM only\n", "line 1: no TRACK in the sheet"},
    };
    for (auto& c : cases) {
        try {
            parse_cue_sheet(c.text, "a.cue");
            ADD_FAILURE() << "accepted: " << c.text;
        } catch (const exception_bad_cuesheet& e) {
            EXPECT_NE(std::string(e.what()).find(c.expected), std::string::npos) << e.what();
        }
    }
}

TEST(cue_sheet, tags_written_into_a_sheet_are_read_back_and_other_lines_stay) {
    tag_record tags;
    tags.set_field("title", "Second Song");
    tags.set_field("artist", "New Band");
    tags.set_field("album", "New Album");
    tags.set_field("date", "1998");
    tags.add_tag_value("comment", "ripped");
    tags.add_tag_value("comment", "twice");
    const std::string written = with_track_tags(sheet, "a.cue", 1, tags);

    const cue_sheet read = parse_cue_sheet(written, "a.cue");
    tag_record second = cue_track_tags(read, 1);
    EXPECT_STREQ(second.first_value("title"), "Second Song");
    EXPECT_STREQ(second.first_value("artist"), "New Band");
    EXPECT_STREQ(second.first_value("album"), "New Album");
    EXPECT_STREQ(second.first_value("date"), "1998");
    EXPECT_EQ(second.find_field("genre"), tag_record::npos);  // the record had none
    EXPECT_EQ(second.value_count(second.find_field("comment")), 2u);
    EXPECT_STREQ(second.first_value("tracknumber"), "2");
    EXPECT_STREQ(cue_track_tags(read, 0).first_value("title"), "Intro");  // the other track keeps its own
    EXPECT_EQ(read.tracks[1].start(), 4u * 4500 + 10 * 75 + 37);

    // Lines the writer does not own stay, in their order.
    std::size_t at = 0;
    for (const char* kept : {"CATALOG 0000000000000", "FILE \"album.flac\" WAVE", "TRACK 01 AUDIO", "TITLE \"Intro\"",
                             "ISRC GBAYE0000001", "INDEX 00 00:00:00", "TRACK 02 AUDIO", "FLAGS DCP", "INDEX 01 04:10:37"}) {
        at = written.find(kept, at);
        ASSERT_NE(at, std::string::npos) << kept << " missing or out of order in\n" << written;
    }
    EXPECT_EQ(written.find("Old Band"), std::string::npos);
}

TEST(disc_layout, tables_of_contents_that_are_no_disc_are_refused) {
    struct { const char* toc; std::optional<unsigned> data; const char* expected; } cases[] = {
        {"1 2 3000 150", std::nullopt, "1 offsets for tracks 1 to 2"},
        {"2 3 3000 150 1000", std::nullopt, "the first track must be 1"},
        {"1 2 3000 150 x", std::nullopt, "'x' is not a frame count"},
        {"1 2 3000 100 1000", std::nullopt, "before the lead-in ends"},
        {"1 2 3000 150 150", std::nullopt, "track 2 does not start after track 1"},
        {"1 2 900 150 1000", std::nullopt, "lead-out 900 is not after the last track"},
        {"1 3 90000 150 1000 20000", 2u, "the first (1) or the last (3)"},
        {"1 2 90000 150 11000", 2u, "the audio must end 11400 frames before it"},
    };
    for (auto& c : cases) {
        try {
            lay_out(parse_toc(c.toc, c.data));
            ADD_FAILURE() << "accepted: " << c.toc;
        } catch (const tunehall_io::exception_io_data& e) {
            EXPECT_NE(std::string(e.what()).find(c.expected), std::string::npos) << e.what();
        }
    }
}
