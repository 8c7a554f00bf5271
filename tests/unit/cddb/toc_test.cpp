// The table of contents and disc id derived from the selected tracks, and the query text sent
// for them.

#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <tunehall/exceptions.h>

#include "cddb/toc.h"
#include "cddb_test_support.h"

namespace {

using cddb_testing::test_track;
using cddb_testing::tracks_of;
using cddb_testing::tracks_without_info;

void expect_cannot_build(const std::function<void()>& build) {
    try {
        build();
        ADD_FAILURE() << "the TOC was built";
    } catch (const tunehall_io::exception_io_data& e) {
        EXPECT_STREQ(e.what(), "CDDB: Could not build query");
    }
}

TEST(disc_toc, three_tracks_give_the_worked_example) {
    // 300.5 s is 22537.5 frames, rounded away from zero.
    track_list tracks = tracks_of({180.0, 240.2, 300.5});
    disc_toc toc = compute_disc_toc(tracks);
    EXPECT_EQ(toc.track_count, 3u);
    EXPECT_EQ(toc.first_offset, 150u);
    EXPECT_EQ(toc.offsets, (std::vector<std::uint32_t>{150, 13650, 31665}));
    EXPECT_EQ(toc.leadout, 54203u);
    EXPECT_EQ(toc.disc_seconds, 722u);
    EXPECT_EQ(toc.disc_id, 0x1502D003u);
    EXPECT_EQ(format_disc_id(toc.disc_id), "1502D003");
    EXPECT_EQ(cddb_query_text(tracks), "cddb query 1502D003 3 150 13650 31665 722");
}

TEST(disc_toc, plain_lengths_give_the_same_as_tracks) {
    std::vector<double> lengths = {180.0, 240.2, 300.5};
    EXPECT_EQ(cddb_query_text(lengths), "cddb query 1502D003 3 150 13650 31665 722");
    EXPECT_EQ(compute_disc_toc(lengths, "00:01:30").first_offset,
              compute_disc_toc(tracks_of(lengths, "00:01:30")).first_offset);
}

struct rounding_case {
    double seconds;
    std::uint32_t frames;
};

class track_length_rounding : public testing::TestWithParam<rounding_case> {};

// The length of one track is the leadout minus the fixed 150-frame start.
TEST_P(track_length_rounding, uses_llround_of_the_product) {
    disc_toc toc = compute_disc_toc(tracks_of({GetParam().seconds}));
    EXPECT_EQ(toc.leadout - toc.first_offset, GetParam().frames) << GetParam().seconds << " s";
}

INSTANTIATE_TEST_SUITE_P(
    lengths, track_length_rounding,
    testing::Values(rounding_case{0.5, 38},           // 37.5 rounds away from zero
                    rounding_case{300.5, 22538},      // 22537.5
                    rounding_case{0.02, 2},           // 1.5
                    rounding_case{0.82, 61},          // 0.82 * 75 is 61.4999... in doubles
                    rounding_case{1.0 / 75.0, 1},     // one frame
                    rounding_case{0.001, 0},          // shorter than half a frame: positive, so accepted
                    rounding_case{240.2, 18015}));

TEST(disc_toc, half_second_track_has_zero_time_field_and_two_seconds) {
    track_list tracks = tracks_of({0.5});
    disc_toc toc = compute_disc_toc(tracks);
    EXPECT_EQ(toc.offsets, (std::vector<std::uint32_t>{150}));
    EXPECT_EQ(toc.leadout, 188u);
    EXPECT_EQ((toc.disc_id >> 8) & 0xFFFF, 0u);
    EXPECT_EQ(cddb_query_text(tracks), "cddb query 02000001 1 150 2");
}

TEST(disc_toc, a_length_not_above_zero_anywhere_fails_the_query) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const std::vector<double>& lengths : std::vector<std::vector<double>>{
             {0.0}, {0.0, 180.0, 200.0}, {180.0, 0.0, 200.0}, {180.0, 200.0, 0.0}, {180.0, -3.0}, {180.0, nan}}) {
        SCOPED_TRACE(testing::PrintToString(lengths));
        expect_cannot_build([&] { compute_disc_toc(tracks_of(lengths)); });
        expect_cannot_build([&] { cddb_query_text(tracks_of(lengths)); });
        expect_cannot_build([&] { cddb_query_text(lengths); });
    }
}

TEST(disc_toc, an_empty_selection_fails_the_query) {
    expect_cannot_build([] { compute_disc_toc(track_list{}); });
    expect_cannot_build([] { compute_disc_toc(std::vector<double>{}); });
}

TEST(disc_toc, query_text_reads_every_length_again) {
    // A track whose length is gone by the second pass (the file changed in between).
    track_list tracks = tracks_of({180.0, 200.0});
    auto vanishing = make_service<test_track>(std::vector<double>{240.0, 0.0}, std::nullopt);
    tracks.push_back(vanishing);
    EXPECT_NO_THROW(compute_disc_toc(tracks));
    expect_cannot_build([&] { cddb_query_text(tracks); });

    // A length that changed between the passes shows in the offsets sent, while the id and the
    // seconds stay those of the first pass: digit sums of 2, 182 and 282 s give 25 (0x19), time
    // (21900 - 150) / 75 = 290 (0x122).
    track_list changing = tracks_of({180.0});
    changing.push_back(make_service<test_track>(std::vector<double>{100.0, 200.0}, std::nullopt));
    changing.push_back(make_service<test_track>(std::vector<double>{10.0}, std::nullopt));
    EXPECT_EQ(cddb_query_text(changing), "cddb query 19012203 3 150 13650 28650 292");
}

TEST(disc_toc, without_an_info_record_track_one_starts_at_frame_zero) {
    track_list tracks = tracks_without_info({180.0, 240.2, 300.5});
    disc_toc toc = compute_disc_toc(tracks);
    EXPECT_EQ(toc.first_offset, 0u);
    EXPECT_EQ(toc.offsets, (std::vector<std::uint32_t>{0, 13500, 31515}));
    // Digit sums of 0, 180 and 420 s: 0 + 9 + 6; time (54053 - 0) / 75 = 720.
    EXPECT_EQ(toc.disc_id, (15u << 24) | (720u << 8) | 3u);
    EXPECT_EQ(cddb_query_text(tracks), "cddb query 0F02D003 3 0 13500 31515 720");
}

TEST(disc_toc, only_the_first_tracks_info_record_counts) {
    track_list tracks = tracks_of({180.0, 240.2});
    tracks.insert(tracks.begin(), make_service<test_track>(std::vector<double>{10.0}, std::nullopt));
    EXPECT_EQ(compute_disc_toc(tracks).first_offset, 0u);
}

struct pregap_case {
    const char* pregap;
    std::uint32_t first_offset;
};

class first_track_pregap : public testing::TestWithParam<pregap_case> {};

TEST_P(first_track_pregap, moves_the_start_of_track_one) {
    EXPECT_EQ(compute_disc_toc(tracks_of({180.0, 200.0}, GetParam().pregap)).first_offset, GetParam().first_offset);
    EXPECT_EQ(compute_disc_toc(std::vector<double>{180.0, 200.0}, GetParam().pregap).first_offset,
              GetParam().first_offset);
}

INSTANTIATE_TEST_SUITE_P(cue_times, first_track_pregap,
                         testing::Values(pregap_case{nullptr, 150},      // no field: the plain lead-in
                                         pregap_case{"00:01:30", 255},   // 1.4 s
                                         pregap_case{"01:30", 255},      // seconds and frames
                                         pregap_case{"105", 255},        // frames alone
                                         pregap_case{"00:00:00", 150},
                                         pregap_case{"01:00:00", 4650},  // a minute
                                         pregap_case{"00:00:33", 183}));

TEST(disc_toc, an_unreadable_pregap_is_a_bad_cue_sheet) {
    EXPECT_THROW(compute_disc_toc(tracks_of({180.0}, "00:00:01:30")), exception_bad_cuesheet);
    EXPECT_THROW(compute_disc_toc(std::vector<double>{180.0}, "00:00:01:30"), exception_bad_cuesheet);
    EXPECT_THROW(compute_disc_toc(tracks_of({180.0}, "1x")), exception_bad_cuesheet);
}

TEST(disc_toc, an_unreadable_index_field_is_a_bad_cue_sheet_too) {
    track_info info;
    info.info_set("index 05", "00:00:01:30");
    track_list tracks{make_service<test_track>(std::vector<double>{180.0}, info)};
    EXPECT_THROW(compute_disc_toc(tracks), exception_bad_cuesheet);
}

TEST(disc_toc, a_checksum_of_255_gives_zero_in_the_top_byte) {
    // 24 tracks of 21 s from 2 s: the digit sums of 2, 23, 44, ..., 485 total 255.
    std::vector<double> lengths(24, 21.0);
    disc_toc toc = compute_disc_toc(lengths);
    EXPECT_EQ(toc.disc_id, 0x0001F818u);  // time 504 s = 0x1F8, 24 tracks
    EXPECT_EQ(format_disc_id(toc.disc_id), "0001F818");
}

TEST(disc_toc, the_id_text_keeps_leading_zeros) {
    // Digit sums of 2, 3 and 5 s give 10; time 6956 s = 0x1B2C.
    std::vector<double> lengths = {1.0, 2.0, 6953.0};
    EXPECT_EQ(compute_disc_toc(lengths).disc_id, 0x0A1B2C03u);
    EXPECT_EQ(format_disc_id(0x0A1B2C03), "0A1B2C03");
    EXPECT_EQ(format_disc_id(0), "00000000");
    EXPECT_EQ(format_disc_id(0xFFFFFFFF), "FFFFFFFF");
}

TEST(disc_toc, more_than_255_tracks_are_accepted_and_the_count_runs_into_the_time) {
    std::vector<double> lengths(300, 10.0);
    disc_toc toc = compute_disc_toc(lengths);
    EXPECT_EQ(toc.track_count, 300u);
    ASSERT_EQ(toc.offsets.size(), 300u);
    EXPECT_EQ(toc.offsets.back(), 150u + 299u * 750u);
    // Checksum 3600 % 255 = 30; time 3000 = 0xBB8, ORed with 300 = 0x12C.
    EXPECT_EQ(toc.disc_id, 0x1E0BB92Cu);
    std::string text = cddb_query_text(lengths);
    EXPECT_EQ(text.rfind("cddb query 1E0BB92C 300 150 900 1650 ", 0), 0u) << text.substr(0, 60);
    EXPECT_EQ(text.substr(text.size() - 12), " 224400 3002");
}

TEST(disc_toc, offsets_wrap_at_32_bits) {
    // Two tracks of 2^32 / 75 s each: the second starts past 2^32 frames and wraps.
    double huge = 4294967296.0 / 75.0;
    disc_toc toc = compute_disc_toc(std::vector<double>{huge, huge});
    EXPECT_EQ(toc.offsets, (std::vector<std::uint32_t>{150, 150}));
    EXPECT_EQ(toc.leadout, 150u);
    EXPECT_EQ(toc.disc_seconds, 2u);
}

// Every real disc of the fixtures: track lengths are rebuilt from the entry's frame offsets and
// disc length, and the TOC must give back the offsets and the id the servers file them under.
std::string upper(std::string s) {
    for (char& c : s)
        if (c >= 'a' && c <= 'f') c = static_cast<char>(c - 32);
    return s;
}

TEST(disc_toc, every_fixture_disc_gives_its_offsets_and_id) {
    std::vector<cddb_testing::fixture_disc> discs = cddb_testing::fixture_discs();
    ASSERT_EQ(discs.size(), 16u);
    for (const cddb_testing::fixture_disc& d : discs) {
        SCOPED_TRACE(d.file);
        ASSERT_EQ(d.offsets.size(), d.track_count);
        std::uint32_t first = d.offsets.front();
        // The cue-sheet pregap that moves track 1 from the standard 150 to `first`.
        std::string pregap = std::to_string(first - 150);
        // The entry only gives the disc length in whole seconds; try the start, middle and end
        // of that last second as the leadout.
        for (std::uint32_t within : {0u, 37u, 74u}) {
            SCOPED_TRACE("leadout " + std::to_string(d.disc_seconds) + " s + " + std::to_string(within) + " frames");
            std::uint32_t leadout = d.disc_seconds * 75 + within;
            std::vector<double> lengths;
            for (std::size_t i = 0; i < d.offsets.size(); ++i) {
                std::uint32_t end = i + 1 < d.offsets.size() ? d.offsets[i + 1] : leadout;
                lengths.push_back((end - d.offsets[i]) / 75.0);
            }
            disc_toc toc = compute_disc_toc(tracks_of(lengths, pregap.c_str()));
            EXPECT_EQ(toc.first_offset, first);
            EXPECT_EQ(toc.offsets, d.offsets);
            EXPECT_EQ(toc.disc_seconds, d.disc_seconds);
            // The playing time divides the frame difference: when track 1 starts later in its
            // second than the leadout does, the time is one second less than the common
            // whole-second formula gives, and the id differs from the servers' in that byte.
            std::uint32_t expected = static_cast<std::uint32_t>(std::stoul(d.computed_id, nullptr, 16));
            if (within < first % 75) {
                expected -= 1u << 8;
                EXPECT_EQ(format_disc_id(toc.disc_id), format_disc_id(expected));
            } else {
                EXPECT_EQ(format_disc_id(toc.disc_id), upper(d.computed_id));
            }
        }
    }
}

} // namespace
