// Choosing the medium of an answer to a search by table of contents: the one with the album's
// track count whose track lengths are closest to the album's.

#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "mb_test_data.h"
#include "musicbrainz/lookup.h"
#include "musicbrainz/response_walk.h"

namespace {

using lengths = std::vector<std::optional<std::uint64_t>>;  // ms; none: the answer gives no length

struct medium {
    std::string title;
    lengths tracks;
    std::string date = "2000";
    bool on_recording = false;  // the length is the recording's, not the track's
};

// A search answer: one release per medium, directly under metadata, listing no disc.
std::string answer_of(const std::vector<medium>& media) {
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<metadata xmlns=\"http://musicbrainz.org/ns/mmd-2.0#\"><release-list>";
    for (const medium& m : media) {
        text += "<release><title>" + m.title + "</title><date>" + m.date + "</date><medium-list count=\"1\"><medium>"
                "<position>1</position><disc-list count=\"0\"/><track-list count=\"" + std::to_string(m.tracks.size()) + "\">";
        for (std::size_t i = 0; i < m.tracks.size(); ++i) {
            const std::string length = m.tracks[i] ? "<length>" + std::to_string(*m.tracks[i]) + "</length>" : "";
            text += "<track><number>" + std::to_string(i + 1) + "</number>" + (m.on_recording ? "" : length) +
                    "<recording><title>t</title>" + (m.on_recording ? length : "") + "</recording></track>";
        }
        text += "</track-list></medium></medium-list></release>";
    }
    return text + "</release-list></metadata>";
}

struct toc_case {
    std::string name;
    std::vector<std::uint64_t> album;  // ms
    std::vector<medium> media;
    std::string chosen;                // empty: nothing qualifies
};

class toc_match : public testing::TestWithParam<toc_case> {};

TEST_P(toc_match, takes_the_medium_closest_in_track_lengths) {
    const std::string answer = answer_of(GetParam().media);
    const ZR::xmlParser::element metadata = mb_testing::metadata_of(answer);
    std::vector<musicbrainz_release> closest;
    musicbrainz_answer_walk(metadata).read_closest_media(GetParam().album, closest);
    if (GetParam().chosen.empty()) {
        EXPECT_THROW(choose_release(closest), musicbrainz_no_match);
        return;
    }
    const musicbrainz_release& chosen = choose_release(closest);
    EXPECT_EQ(chosen.title, GetParam().chosen);
    EXPECT_TRUE(chosen.matched_by_toc);
}

const std::vector<std::uint64_t> album = {180000, 240000};

INSTANTIATE_TEST_SUITE_P(
    search_answers, toc_match,
    testing::Values(
        toc_case{"smallest_sum_of_differences", album,
                 {{"one_track_far", {180000, 245000}}, {"both_near", {181000, 241000}}, {"exact", {180000, 240000}}},
                 "exact"},
        // The sum counts, not the largest single difference.
        toc_case{"sum_not_maximum", album, {{"two_small", {183000, 243000}}, {"one_big", {180000, 245000}}}, "one_big"},
        toc_case{"other_track_counts_never_qualify", album,
                 {{"three_tracks", {180000, 240000, 1000}}, {"one_track", {180000}}, {"far", {100000, 100000}}},
                 "far"},
        toc_case{"recording_length_when_the_track_has_none", album,
                 {{"track_lengths", {185000, 240000}}, {"recording_lengths", {180000, 240000}, "2000", true}},
                 "recording_lengths"},
        toc_case{"a_missing_length_differs_by_the_whole_track", album,
                 {{"unknown_second", {180000, std::nullopt}}, {"a_bit_off", {190000, 250000}}}, "a_bit_off"},
        toc_case{"equally_close_goes_to_the_earliest_date", album,
                 {{"later", {181000, 240000}, "2005"}, {"earlier", {180000, 241000}, "1999"}}, "earlier"},
        toc_case{"no_medium_with_the_track_count", album, {{"three_tracks", {180000, 240000, 1000}}}, ""}),
    [](const testing::TestParamInfo<toc_case>& info) { return info.param.name; });

} // namespace
