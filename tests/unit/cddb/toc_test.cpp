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
#include "support/temp_folder.h"
#include "unit/musicbrainz/mb_test_data.h"

namespace {

using cddb_testing::test_track;
using cddb_testing::tracks_of;
using offsets = std::vector<std::uint32_t>;

void expect_cannot_build(const std::function<void()>& build) {
    try {
        build();
        ADD_FAILURE() << "the TOC was built";
    } catch (const tunehall_io::exception_io_data& e) {
        EXPECT_STREQ(e.what(), "CDDB: Could not build query");
    }
}

TEST(disc_toc, worked_discs_give_their_offsets_id_and_query) {
    // 300.5 s is 22537.5 frames, rounded away from zero.
    const std::vector<double> lengths = {180.0, 240.2, 300.5};
    EXPECT_EQ(cddb_query_text(tracks_of(lengths)), "cddb query 1502D003 3 150 13650 31665 722");
    EXPECT_EQ(cddb_query_text(lengths), "cddb query 1502D003 3 150 13650 31665 722");
    EXPECT_EQ(compute_disc_toc(lengths).leadout, 54203u);
    EXPECT_EQ(cddb_query_text(tracks_of({0.5})), "cddb query 02000001 1 150 2");
    // Digit sums of 2, 3 and 5 s give 10: leading zeros stay in the id text.
    EXPECT_EQ(format_disc_id(compute_disc_toc(std::vector<double>{1.0, 2.0, 6953.0}).disc_id), "0A1B2C03");
    // 24 tracks of 21 s: the digit sums total 255, which gives 0 in the top byte.
    EXPECT_EQ(format_disc_id(compute_disc_toc(std::vector<double>(24, 21.0)).disc_id), "0001F818");
    EXPECT_EQ(format_disc_id(0xFFFFFFFF), "FFFFFFFF");
}

TEST(disc_toc, a_track_length_rounds_to_the_nearest_frame_away_from_zero) {
    const struct {
        double seconds;
        std::uint32_t frames;
    } cases[] = {{0.5, 38}, {300.5, 22538}, {0.02, 2}, {0.82, 61} /* 61.4999... in doubles */,
                 {1.0 / 75.0, 1}, {0.001, 0} /* positive, so accepted */, {240.2, 18015}};
    for (const auto& c : cases) {
        disc_toc toc = compute_disc_toc(tracks_of({c.seconds}));
        EXPECT_EQ(toc.leadout - toc.first_offset, c.frames) << c.seconds << " s";
    }
}

TEST(disc_toc, an_empty_selection_or_a_length_not_above_zero_fails_the_query) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const std::vector<double>& lengths : std::vector<std::vector<double>>{
             {}, {0.0}, {0.0, 180.0, 200.0}, {180.0, 0.0, 200.0}, {180.0, 200.0, 0.0}, {180.0, -3.0}, {180.0, nan}}) {
        SCOPED_TRACE(testing::PrintToString(lengths));
        expect_cannot_build([&] { compute_disc_toc(tracks_of(lengths)); });
        expect_cannot_build([&] { cddb_query_text(tracks_of(lengths)); });
        expect_cannot_build([&] { cddb_query_text(lengths); });
    }
}

TEST(disc_toc, query_text_reads_every_length_again) {
    // A track whose length is gone by the second pass (the file changed in between).
    track_list tracks = tracks_of({180.0, 200.0});
    tracks.push_back(make_service<test_track>(std::vector<double>{240.0, 0.0}, std::nullopt));
    EXPECT_NO_THROW(compute_disc_toc(tracks));
    expect_cannot_build([&] { cddb_query_text(tracks); });

    // A length that changed between the passes shows in the offsets sent, while the id and the
    // seconds stay those of the first pass.
    track_list changing = tracks_of({180.0});
    changing.push_back(make_service<test_track>(std::vector<double>{100.0, 200.0}, std::nullopt));
    changing.push_back(make_service<test_track>(std::vector<double>{10.0}, std::nullopt));
    EXPECT_EQ(cddb_query_text(changing), "cddb query 19012203 3 150 13650 28650 292");
}

TEST(disc_toc, track_one_starts_after_the_first_tracks_pregap_or_at_zero_without_an_info_record) {
    track_list tracks = cddb_testing::tracks_without_info({180.0, 240.2, 300.5});
    EXPECT_EQ(cddb_query_text(tracks), "cddb query 0F02D003 3 0 13500 31515 720");
    // Only the first track's info record counts.
    track_list later = tracks_of({180.0, 240.2});
    later.insert(later.begin(), make_service<test_track>(std::vector<double>{10.0}, std::nullopt));
    EXPECT_EQ(compute_disc_toc(later).first_offset, 0u);

    const struct {
        const char* pregap;
        std::uint32_t first_offset;
    } cases[] = {{nullptr, 150}, {"00:01:30", 255}, {"01:30", 255},   {"105", 255},
                 {"00:00:00", 150}, {"01:00:00", 4650}, {"00:00:33", 183}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.pregap ? c.pregap : "none");
        EXPECT_EQ(compute_disc_toc(tracks_of({180.0, 200.0}, c.pregap)).first_offset, c.first_offset);
        EXPECT_EQ(compute_disc_toc(std::vector<double>{180.0, 200.0}, c.pregap).first_offset, c.first_offset);
    }
    for (const char* bad : {"00:00:01:30", "1x"}) {
        EXPECT_THROW(compute_disc_toc(tracks_of({180.0}, bad)), exception_bad_cuesheet) << bad;
        EXPECT_THROW(compute_disc_toc(std::vector<double>{180.0}, bad), exception_bad_cuesheet) << bad;
    }
    track_info info;
    info.info_set("index 05", "00:00:01:30");
    EXPECT_THROW(compute_disc_toc(track_list{make_service<test_track>(std::vector<double>{180.0}, info)}),
                 exception_bad_cuesheet);
}

TEST(disc_toc, large_discs_run_the_count_into_the_time_and_wrap_offsets_at_32_bits) {
    std::vector<double> lengths(300, 10.0);
    disc_toc toc = compute_disc_toc(lengths);
    EXPECT_EQ(toc.track_count, 300u);
    // Checksum 3600 % 255 = 30; time 3000 = 0xBB8, ORed with 300 = 0x12C.
    EXPECT_EQ(toc.disc_id, 0x1E0BB92Cu);
    std::string text = cddb_query_text(lengths);
    EXPECT_EQ(text.rfind("cddb query 1E0BB92C 300 150 900 1650 ", 0), 0u) << text.substr(0, 60);
    EXPECT_EQ(text.substr(text.size() - 12), " 224400 3002");

    double huge = 4294967296.0 / 75.0;
    toc = compute_disc_toc(std::vector<double>{huge, huge});
    EXPECT_EQ(toc.offsets, (offsets{150, 150}));
    EXPECT_EQ(toc.leadout, 150u);
    EXPECT_EQ(toc.disc_seconds, 2u);
}

// Every real disc of the fixtures, laid out as tracks, gives back its offsets and the id the
// servers file it under.
TEST(disc_toc, every_fixture_disc_gives_its_offsets_and_id) {
    for (const testing_support::fixture_toc& d : testing_support::read_fixture_tocs()) {
        SCOPED_TRACE(d.file);
        mb_testing::known_disc disc{d.disc_id, 0, {d.offsets.begin(), d.offsets.end()}, d.file};
        const std::string pregap = mb_testing::pregap_of(disc);
        // The entry only gives whole seconds; try the start, middle and end of the last second.
        for (std::uint32_t within : {0u, 37u, 74u}) {
            SCOPED_TRACE(within);
            disc.leadout = static_cast<std::uint64_t>(d.disc_seconds) * 75 + within;
            disc_toc toc = compute_disc_toc(tracks_of(mb_testing::lengths_of(disc), pregap.empty() ? nullptr : pregap.c_str()));
            EXPECT_EQ(toc.offsets, offsets(d.offsets.begin(), d.offsets.end()));
            EXPECT_EQ(toc.disc_seconds, static_cast<std::uint32_t>(d.disc_seconds));
            // The playing time divides the frame difference: when track 1 starts later in its
            // second than the leadout does, the time is one second less than the servers' id.
            std::uint32_t expected = static_cast<std::uint32_t>(std::stoul(d.disc_id, nullptr, 16));
            if (within < d.offsets.front() % 75) expected -= 1u << 8;
            EXPECT_EQ(toc.disc_id, expected);
        }
    }
}

} // namespace
