// Reading disc-id answers: which media hold the disc, what each yields, which release is chosen,
// artist credits and numbers. Real answers first, then small answers shaped to one rule each.

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "mb_test_data.h"
#include "musicbrainz/disc_id.h"
#include "musicbrainz/lookup.h"
#include "musicbrainz/parse_unsigned.h"
#include "musicbrainz/response_walk.h"

namespace {

namespace xml = ZR::xmlParser;
using mb_testing::metadata_of;

using names = std::vector<std::string>;

// The walk on "metadata", then on each of its "disc" children; the lookup's walk over one index
// of the whole answer must find the same.
std::vector<musicbrainz_release> candidates_in(const std::string& answer, const std::string& disc_id,
                                               std::size_t track_count) {
    xml::element metadata = metadata_of(answer);
    std::vector<musicbrainz_release> found;
    read_release_candidates(metadata, disc_id, track_count, found);
    for (const xml::element& disc : xml::find_children(metadata, "disc"))
        read_release_candidates(disc, disc_id, track_count, found);
    std::vector<musicbrainz_release> walked;
    musicbrainz_answer_walk(metadata).read_release_candidates(disc_id, track_count, walked);
    EXPECT_TRUE(walked == found) << "the whole-answer walk differs for " << disc_id;
    return found;
}

names disc_ids_in(const std::string& answer) {
    xml::element metadata = metadata_of(answer);
    names ids;
    collect_disc_ids(metadata, ids);
    for (const xml::element& disc : xml::find_children(metadata, "disc")) collect_disc_ids(disc, ids);
    names walked;
    musicbrainz_answer_walk(metadata).collect_disc_ids(walked);
    EXPECT_EQ(walked, ids) << "the whole-answer walk differs";
    return ids;
}

names titles_of(const musicbrainz_release& r) {
    names titles;
    for (const musicbrainz_track& t : r.tracks) titles.push_back(t.title);
    return titles;
}

// ---------------------------------------------------------------------------------------------
// The shared fixtures' disc-id answers

TEST(fixture_answers, list_their_discs_but_yield_no_release_without_numbered_tracks) {
    const struct {
        std::string file;
        std::string disc_id;      // the disc the answer is for
        std::size_t track_count;  // the disc's tracks
        std::size_t listed_ids;   // disc entries under its releases, repeats included
    } cases[] = {
        {"localhots-pmzhT6ZlFiwSRCdVwV0eqire5_Y-.xml", "pmzhT6ZlFiwSRCdVwV0eqire5_Y-", 9, 2},
        {"mbserver-test-IeldkVfIh1wep_M8CMuDvA0nQ7Q-.xml", "IeldkVfIh1wep_M8CMuDvA0nQ7Q-", 9, 1},
        {"mbserver-test-T.epJ9O5SoDjPqAJuOJfAI9O8Nk-_inc-artist-credits.xml", "T.epJ9O5SoDjPqAJuOJfAI9O8Nk-", 13, 2},
        {"mbserver-test-toc-lookup-release-list-no-disc.xml", "IeldkVfIh1wep_M8CMuDvA0nQ7Q-", 9, 1},
        {"ngs-f7agNZK1HMQ2WUWq9bwDymw9aHA-.xml", "f7agNZK1HMQ2WUWq9bwDymw9aHA-", 13, 5},
        {"ngs-xp5tz6rE4OHrBafj0bLfDRMGK48-.xml", "xp5tz6rE4OHrBafj0bLfDRMGK48-", 8, 12},
        {"rubyripper-oneReleaseFound-4vi.H1hC7BRP18_a.7D4r4NOYL8-.xml", "4vi.H1hC7BRP18_a.7D4r4NOYL8-", 17, 24},
        {"rubyripper-multipleReleasesFound-4vi.H1hC7BRP18_a.7D4r4NOYL8-.xml", "4vi.H1hC7BRP18_a.7D4r4NOYL8-", 17, 218},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.file);
        const std::string answer = mb_testing::fixture_answer("discid/" + c.file);
        names ids = disc_ids_in(answer);
        EXPECT_EQ(ids.size(), c.listed_ids);
        EXPECT_NE(std::find(ids.begin(), ids.end(), c.disc_id), ids.end());
        for (const std::string& id : ids) EXPECT_TRUE(is_disc_id_form(id)) << id;
        // Their track lists are counts only, or tracks without a "number": no medium qualifies.
        EXPECT_TRUE(candidates_in(answer, c.disc_id, c.track_count).empty());
    }
    // Error bodies have no metadata.
    for (const char* file : {"errors/rubyripper-noReleasesFound-404.xml", "errors/mbserver-test-invalid-discid-400.xml"})
        EXPECT_THROW(metadata_of(mb_testing::fixture_answer(file)), xml::error) << file;
}

// ---------------------------------------------------------------------------------------------
// The local server's answers, which carry numbered track lists

TEST(server_answers, the_earliest_qualifying_edition_of_a_shared_disc_is_chosen) {
    const std::string id = "c.J3z3pava1oPzXD0K2e9q48lJc-";
    std::vector<musicbrainz_release> found = candidates_in(mb_testing::server_answer(id), id, 15);
    // Five editions list the disc: one has no date, one a 16th track, one vinyl numbers.
    ASSERT_EQ(found.size(), 2u);
    EXPECT_EQ(found[0].date, "2009-02-17");
    EXPECT_EQ(found[1].date, "2009-02-16");
    const musicbrainz_release& chosen = choose_release(found);
    EXPECT_EQ(chosen.date, "2009-02-16");
    EXPECT_EQ(chosen.title, "Dark Was the Night");
    EXPECT_EQ(chosen.album_artist, names{"Various Artists"});
    EXPECT_EQ(chosen.disc_number, 1u);
    EXPECT_EQ(chosen.total_discs, 2u);
    ASSERT_EQ(chosen.tracks.size(), 15u);
    EXPECT_EQ(chosen.tracks[0].artist, names{"Dirty Projectors + David Byrne"});
    EXPECT_EQ(chosen.tracks[1].title, "Cello Song (feat. Jos\xC3\xA9 Gonz\xC3\xA1lez)");
    EXPECT_EQ(chosen.tracks[2].artist, (names{"Feist", "Ben Gibbard"}));             // joined by " and "
    EXPECT_EQ(chosen.tracks[10].artist, (names{"Justin Vernon", "Aaron Dessner"}));  // joined by " + "
    EXPECT_EQ(chosen.tracks[14].title, "You Are the Blood");
}

TEST(server_answers, each_disc_of_a_two_disc_release_yields_its_own_medium) {
    const std::string disc1 = "pphmFbEaZKk7KDKQ_AKCMVtrjIg-";
    const std::string disc2 = "cm9L.BbeuJ_zNOwr0C_e.K0.D0E-";

    std::vector<musicbrainz_release> first = candidates_in(mb_testing::server_answer(disc1), disc1, 11);
    ASSERT_EQ(first.size(), 1u);
    EXPECT_EQ(first[0].disc_number, 1u);
    EXPECT_EQ(first[0].total_discs, 2u);
    ASSERT_EQ(first[0].tracks.size(), 11u);
    EXPECT_EQ(first[0].tracks[4].title, "It Ain\xE2\x80\x99t Easy");  // the recording's title, not the track's

    // The answer for disc 1 lists disc 2 as well: it serves both.
    std::vector<musicbrainz_release> second = candidates_in(mb_testing::server_answer(disc1), disc2, 12);
    ASSERT_EQ(second.size(), 1u);
    EXPECT_EQ(second[0].disc_number, 2u);
    EXPECT_EQ(second[0].tracks[0].artist, names{"The Arnold Corns"});
    EXPECT_EQ(second[0].tracks[11].title, "Moonage Daydream (new mix)");

    const names ids = disc_ids_in(mb_testing::server_answer(disc1));
    EXPECT_EQ(ids.size(), 7u);
    EXPECT_NE(std::find(ids.begin(), ids.end(), disc1), ids.end());
    EXPECT_NE(std::find(ids.begin(), ids.end(), disc2), ids.end());
}

// ---------------------------------------------------------------------------------------------
// Release lookups of the shared fixtures: artist credits and track lists

xml::element release_in(const std::string& file) {
    return xml::find_child(metadata_of(mb_testing::fixture_answer("release-lookups/" + file)), "release");
}

TEST(artist_credit, names_every_credited_artist_by_the_artists_own_name_on_releases_and_recordings) {
    // Credited as "Son, Ambulance"; the artist's own name is used.
    EXPECT_EQ(read_artist_credit(release_in("rubyripper-splitRelease.xml")), (names{"Son Ambulance", "Bright Eyes"}));
    EXPECT_EQ(read_artist_credit(release_in("rubyripper-splitReleaseOneArtist.xml")),
              (names{"Iron & Wine", "Calexico"}));
    EXPECT_EQ(read_artist_credit(release_in("ngs-833d4c3a-2635-4b7a-83c4-4e560588f23a-recordings+artist-credits.xml")),
              names{"JT Bruce"});
    // No credit at all.
    EXPECT_TRUE(read_artist_credit(release_in("ngs-a81f3c15-2f36-47c7-9b0f-f684a8b0530f-recordings.xml")).empty());
    // A recording has its own credit.
    xml::element release = release_in("ngs-fbe4490e-e366-4da2-a37a-82162d2f41a9-recordings+artist-credits.xml");
    EXPECT_EQ(read_artist_credit(release), names{"Suzuki Method International"});
    xml::element medium = xml::find_child(xml::find_child(release, "medium-list"), "medium");
    xml::element track = xml::find_children(xml::find_child(medium, "track-list"), "track").front();
    // Credited in Japanese script, unlike the release.
    EXPECT_EQ(read_artist_credit(xml::find_child(track, "recording")),
              names{"\xE7\x89\x87\xE5\xB2\xA1\xE6\x98\xA5\xE5\xAD\x90"});
}

// A release lookup's release placed in a release list, as a disc-id answer holds it.
std::string as_disc_answer(const std::string& file) {
    xml::element metadata = metadata_of(mb_testing::fixture_answer("release-lookups/" + file));
    return "<metadata xmlns=\"http://musicbrainz.org/ns/mmd-2.0#\"><release-list count=\"1\">" + metadata.content +
           "</release-list></metadata>";
}

TEST(release_lookups, a_modern_release_with_a_disc_list_and_numbers_qualifies) {
    std::vector<musicbrainz_release> found = candidates_in(
        as_disc_answer("mbserver-test-b3b7e934_inc-discids+recordings.xml"), "W01Qvrvwkaz2Cm.IQm55_RHoRxs-", 3);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].title, "Summer Reggae! Rainbow");
    EXPECT_EQ(found[0].date, "2001-07-04");
    EXPECT_TRUE(found[0].album_artist.empty());
    EXPECT_EQ(found[0].tracks[1].title,
              "HELLO! \xE3\x81\xBE\xE3\x81\x9F\xE4\xBC\x9A\xE3\x81\x8A\xE3\x81\x86\xE3\x81\xAD "
              "(7\xE4\xBA\xBA\xE7\xA5\xAD version)");
    EXPECT_TRUE(found[0].tracks[1].artist.empty());
}

TEST(release_lookups, releases_whose_media_list_no_discs_yield_nothing) {
    for (const char* file : {"ngs-fe29e7f0-eb46-44ba-9348-694166f47885-recordings.xml",
                             "ngs-833d4c3a-2635-4b7a-83c4-4e560588f23a-recordings+artist-credits.xml"}) {
        const std::string answer = as_disc_answer(file);
        EXPECT_TRUE(disc_ids_in(answer).empty()) << file;
        EXPECT_TRUE(candidates_in(answer, "W01Qvrvwkaz2Cm.IQm55_RHoRxs-", 14).empty()) << file;
    }
}

TEST(release_lookups, old_multi_disc_answers_list_every_discs_ids) {
    EXPECT_EQ(disc_ids_in(as_disc_answer("rubyripper-multiDiscRelease.xml")).size(), 19u + 18u);
    EXPECT_EQ(disc_ids_in(as_disc_answer("rubyripper-oneAlbumArtist.xml")).size(), 6u + 1u);
}

// ---------------------------------------------------------------------------------------------
// One rule at a time

const std::string the_disc = "IeldkVfIh1wep_M8CMuDvA0nQ7Q-";

using lengths = std::vector<std::optional<std::uint64_t>>;  // ms; none: the answer gives no length

struct medium_shape {
    unsigned position = 1;
    names disc_ids = {the_disc};
    std::string count_attribute = "2";  // the track list's "count"
    names numbers = {"1", "2"};         // one track per entry
    lengths track_lengths = {};         // by track, when given
    bool on_recording = false;          // the lengths are the recordings', not the tracks'
};

struct release_shape {
    std::string title = "Album";
    std::optional<std::string> date = "2000";
    std::string media_count = "1";
    std::vector<medium_shape> media = {medium_shape{}};
};

// A disc-id answer (the releases under the disc), or with `search` a search answer (directly under
// metadata).
std::string answer_of(const std::vector<release_shape>& releases, bool search = false) {
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                       "<metadata xmlns=\"http://musicbrainz.org/ns/mmd-2.0#\">" +
                       (search ? "" : "<disc id=\"" + the_disc + "\">") + "<release-list count=\"" +
                       std::to_string(releases.size()) + "\">";
    for (const release_shape& r : releases) {
        text += "<release><title>" + r.title + "</title>";
        text += "<artist-credit><name-credit><artist><name>Band</name></artist></name-credit></artist-credit>";
        if (r.date) text += "<date>" + *r.date + "</date>";
        text += "<medium-list count=\"" + r.media_count + "\">";
        for (const medium_shape& m : r.media) {
            text += "<medium><position>" + std::to_string(m.position) + "</position><disc-list count=\"" +
                    std::to_string(m.disc_ids.size()) + "\">";
            for (const std::string& id : m.disc_ids) text += id.empty() ? "<disc/>" : "<disc id=\"" + id + "\"/>";
            text += "</disc-list><track-list count=\"" + m.count_attribute + "\">";
            for (std::size_t i = 0; i < m.numbers.size(); ++i) {
                const std::optional<std::uint64_t> ms = i < m.track_lengths.size() ? m.track_lengths[i] : std::nullopt;
                const std::string length = ms ? "<length>" + std::to_string(*ms) + "</length>" : "";
                text += "<track><number>" + m.numbers[i] + "</number>" + (m.on_recording ? "" : length) +
                        "<recording><title>Song " + m.numbers[i] + "</title>" + (m.on_recording ? length : "") +
                        "</recording></track>";
            }
            text += "</track-list></medium>";
        }
        text += "</medium-list></release>";
    }
    return text + "</release-list>" + (search ? "" : "</disc>") + "</metadata>";
}

release_shape dated(const std::string& title, std::optional<std::string> date) {
    release_shape r;
    r.title = title;
    r.date = std::move(date);
    return r;
}

std::string chosen_title(const std::vector<release_shape>& releases) {
    return choose_release(candidates_in(answer_of(releases), the_disc, 2)).title;
}

TEST(release_choice, the_earliest_date_wins_and_a_missing_date_element_never_matches) {
    const struct {
        std::vector<release_shape> releases;
        const char* chosen;
    } cases[] = {
        {{dated("later", "2001-03-01"), dated("earlier", "1999")}, "earlier"},
        {{dated("earlier", "1999-05-10"), dated("later", "2001")}, "earlier"},
        // Compared as bytes: a year alone sorts before any date in that year.
        {{dated("day", "1999-05-10"), dated("year", "1999")}, "year"},
        {{dated("dated", "1999"), dated("undated", "")}, "undated"},
        {{dated("first", "1999"), dated("second", "1999")}, "first"},
        {{dated("no date", std::nullopt), dated("dated", "2005")}, "dated"},
    };
    for (const auto& c : cases) EXPECT_EQ(chosen_title(c.releases), c.chosen);
    EXPECT_THROW(chosen_title({dated("no date", std::nullopt)}), musicbrainz_no_match);
    EXPECT_THROW(choose_release({}), musicbrainz_no_match);
}

medium_shape with_numbers(names numbers, std::string count = "2") {
    medium_shape m;
    m.numbers = std::move(numbers);
    m.count_attribute = std::move(count);
    return m;
}

medium_shape with_discs(names ids) {
    medium_shape m;
    m.disc_ids = std::move(ids);
    return m;
}

TEST(medium_rules, decide_whether_a_medium_is_kept) {
    const struct {
        medium_shape medium;
        bool kept;
    } cases[] = {
        {medium_shape{}, true},
        {with_numbers({"2", "1"}), true},
        {with_numbers({"A1", "2"}), false},
        {with_numbers({"0", "1"}), false},
        {with_numbers({"1", "3"}), false},
        {with_numbers({"1", "99999999999"}), false},
        {with_numbers({"", "1"}), false},  // reads as 0
        {with_numbers({"1", "2"}, "3"), false},
        {with_numbers({"1", "2", "3"}), false},
        {with_numbers({"1", "2"}, "two"), false},
        {with_discs({"xp5tz6rE4OHrBafj0bLfDRMGK48-"}), false},
        {with_discs({"xp5tz6rE4OHrBafj0bLfDRMGK48-", the_disc}), true},
        {with_discs({}), false},
        {with_discs({"ieldkVfIh1wep_M8CMuDvA0nQ7Q-"}), false},  // the id differs in case
    };
    for (const auto& c : cases) {
        release_shape r;
        r.media = {c.medium};
        EXPECT_EQ(candidates_in(answer_of({r}), the_disc, 2).size(), c.kept ? 1u : 0u)
            << testing::PrintToString(c.medium.numbers) << " " << c.medium.count_attribute << " "
            << testing::PrintToString(c.medium.disc_ids);
    }
}

TEST(medium_rules, tracks_fill_their_slots_by_number) {
    release_shape r;
    r.media = {with_numbers({"2", "1"})};
    musicbrainz_release found = candidates_in(answer_of({r}), the_disc, 2).at(0);
    EXPECT_EQ(titles_of(found), (names{"Song 1", "Song 2"}));
    EXPECT_TRUE(found.tracks[0].artist.empty());  // the recording has no credit of its own
    EXPECT_EQ(found.album_artist, names{"Band"});
}

TEST(medium_rules, position_and_medium_count_give_disc_number_and_total) {
    release_shape r;
    r.media_count = "3";
    medium_shape first = with_discs({"xp5tz6rE4OHrBafj0bLfDRMGK48-"});
    medium_shape third;
    third.position = 3;
    r.media = {first, third};
    std::vector<musicbrainz_release> found = candidates_in(answer_of({r}), the_disc, 2);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].disc_number, 3u);
    EXPECT_EQ(found[0].total_discs, 3u);
}

TEST(medium_rules, a_skipped_medium_does_not_stop_the_walk) {
    release_shape bad = dated("bad", "1990");
    bad.media = {with_numbers({"A1", "A2"}), medium_shape{}};
    release_shape good = dated("good", "2000");
    std::vector<musicbrainz_release> found = candidates_in(answer_of({bad, good}), the_disc, 2);
    ASSERT_EQ(found.size(), 2u);  // the second medium of "bad", then "good"
    EXPECT_EQ(found[0].title, "bad");
    EXPECT_EQ(found[1].title, "good");
}

TEST(medium_rules, a_disc_without_an_id_abandons_the_rest_of_the_answer) {
    release_shape first = dated("first", "2000");
    release_shape broken = dated("broken", "1990");
    broken.media = {with_discs({"", the_disc})};
    release_shape after = dated("after", "1980");
    const std::string answer = answer_of({first, broken, after});
    std::vector<musicbrainz_release> found = candidates_in(answer, the_disc, 2);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].title, "first");
    EXPECT_EQ(disc_ids_in(answer), names{the_disc});  // first's only; the walk stopped at the broken one
}

TEST(medium_rules, an_element_without_a_release_list_contributes_nothing) {
    xml::element e;
    e.namespaces[""] = std::string(xml::musicbrainz_namespace);
    e.content = "<sectors>1</sectors>";
    std::vector<musicbrainz_release> found;
    read_release_candidates(e, the_disc, 2, found);
    names ids;
    collect_disc_ids(e, ids);
    EXPECT_TRUE(found.empty());
    EXPECT_TRUE(ids.empty());
}

// A search answer by table of contents: the medium with the album's track count whose track
// lengths are closest to the album's (180 s and 240 s).
release_shape searched(const std::string& title, lengths track_lengths, const std::string& date = "2000",
                       bool on_recording = false) {
    release_shape r = dated(title, date);
    medium_shape& m = r.media[0];
    m.disc_ids = {};
    m.numbers = {};
    for (std::size_t i = 0; i < track_lengths.size(); ++i) m.numbers.push_back(std::to_string(i + 1));
    m.count_attribute = std::to_string(track_lengths.size());
    m.track_lengths = std::move(track_lengths);
    m.on_recording = on_recording;
    return r;
}

TEST(toc_match, takes_the_medium_closest_in_track_lengths) {
    const struct {
        std::vector<release_shape> releases;
        const char* chosen;  // empty: nothing qualifies
    } cases[] = {
        {{searched("one_track_far", {180000, 245000}), searched("both_near", {181000, 241000}),
          searched("exact", {180000, 240000})}, "exact"},
        // The sum counts, not the largest single difference.
        {{searched("two_small", {183000, 243000}), searched("one_big", {180000, 245000})}, "one_big"},
        // Other track counts never qualify.
        {{searched("three_tracks", {180000, 240000, 1000}), searched("one_track", {180000}),
          searched("far", {100000, 100000})}, "far"},
        // The recording's length when the track has none.
        {{searched("track_lengths", {185000, 240000}), searched("recording_lengths", {180000, 240000}, "2000", true)},
         "recording_lengths"},
        // A missing length differs by the whole track.
        {{searched("unknown_second", {180000, std::nullopt}), searched("a_bit_off", {190000, 250000})}, "a_bit_off"},
        {{searched("later", {181000, 240000}, "2005"), searched("earlier", {180000, 241000}, "1999")}, "earlier"},
        {{searched("three_tracks", {180000, 240000, 1000})}, ""},
    };
    const std::vector<std::uint64_t> album = {180000, 240000};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.chosen);
        const std::string answer = answer_of(c.releases, /*search=*/true);
        std::vector<musicbrainz_release> closest;
        musicbrainz_answer_walk(metadata_of(answer)).read_closest_media(album, closest);
        if (!*c.chosen) {
            EXPECT_THROW(choose_release(closest), musicbrainz_no_match);
            continue;
        }
        const musicbrainz_release& chosen = choose_release(closest);
        EXPECT_EQ(chosen.title, c.chosen);
        EXPECT_TRUE(chosen.matched_by_toc);
    }
}

// ---------------------------------------------------------------------------------------------
// Numbers

TEST(unsigned_numbers, read_as_decimal_within_32_bits_and_only_the_given_length) {
    const std::pair<std::string, std::uint32_t> numbers[] = {{"", 0}, {"0", 0}, {"7", 7}, {"0012", 12},
                                                             {"4294967295", 4294967295u}};
    for (const auto& [text, value] : numbers) EXPECT_EQ(parse_unsigned(text.data(), text.size()), value) << text;
    for (std::string text : {"A1", "-1", "+1", " 1", "1 ", "1/2", "1.0", "\xD9\xA1"})
        EXPECT_THROW(parse_unsigned(text.data(), text.size()), ZR::invalid_input) << text;
    for (std::string text : {"4294967296", "99999999999", "123456789012345678901234567890"})
        EXPECT_THROW(parse_unsigned(text.data(), text.size()), ZR::overflow) << text;
    EXPECT_EQ(parse_unsigned("12x", 2), 12u);
}

} // namespace
