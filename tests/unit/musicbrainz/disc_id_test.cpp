// The MusicBrainz disc id of the selected tracks: its table of contents, the hashed text, SHA-1
// and the base64 variant, checked against discs whose ids the database already holds.

#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <hostkit/plain_track.h>
#include <tunehall/exceptions.h>

#include "cddb/cddb_test_support.h"
#include "mb_test_data.h"
#include "musicbrainz/base64.h"
#include "musicbrainz/disc_id.h"
#include "musicbrainz/sha1_hasher.h"

namespace {

using mb_testing::known_disc;

std::string sha1_hex_of(const std::string& text) {
    sha1_hasher hasher;
    hasher.add(text);
    return lowercase_hex(hasher.finish());
}

track_list plain_tracks(std::size_t count, double seconds) {
    return mb_testing::tracks_of(std::vector<double>(count, seconds));
}

TEST(musicbrainz_disc_id, tracks_laid_out_like_a_known_disc_get_its_id) {
    std::vector<known_disc> discs = mb_testing::fixture_discs();
    for (const known_disc& d : mb_testing::server_discs()) discs.push_back(d);
    for (const known_disc& disc : discs) {
        SCOPED_TRACE(disc.id);
        musicbrainz_toc toc = compute_musicbrainz_toc(mb_testing::tracks_of(disc));
        EXPECT_EQ(toc.offsets, disc.offsets);
        EXPECT_EQ(toc.leadout, disc.leadout);
        EXPECT_EQ(musicbrainz_disc_id(toc), disc.id);
        // Plain lengths with the pregap give the same.
        const std::string pregap = mb_testing::pregap_of(disc);
        EXPECT_EQ(compute_musicbrainz_disc_id(mb_testing::lengths_of(disc), pregap.empty() ? nullptr : pregap.c_str()),
                  disc.id);
    }
    const known_disc disc = mb_testing::disc_with_id("pmzhT6ZlFiwSRCdVwV0eqire5_Y-");
    EXPECT_EQ(musicbrainz_toc_text(compute_musicbrainz_toc(mb_testing::tracks_of(disc))),
              "1+9+217171+150+35000+63711+86440+105891+128017+154668+177007+200379");
}

TEST(musicbrainz_disc_id, ninety_nine_tracks_are_accepted_and_other_counts_refused) {
    EXPECT_EQ(compute_musicbrainz_disc_id(plain_tracks(99, 30.0)).size(), 28u);
    EXPECT_EQ(compute_musicbrainz_toc(plain_tracks(99, 30.0)).offsets.back(), 150u + 98u * 2250u);
    EXPECT_THROW(compute_musicbrainz_disc_id(plain_tracks(100, 30.0)), std::invalid_argument);
    EXPECT_THROW(compute_musicbrainz_disc_id(track_list{}), std::invalid_argument);
    EXPECT_THROW(compute_musicbrainz_disc_id(std::vector<double>(100, 30.0)), std::invalid_argument);
    EXPECT_THROW(compute_musicbrainz_disc_id(std::vector<double>{}), std::invalid_argument);
    EXPECT_THROW(musicbrainz_disc_id(musicbrainz_toc{}), std::invalid_argument);
}

TEST(musicbrainz_disc_id, an_unreadable_pregap_counts_as_none_on_a_track_but_is_refused_as_an_argument) {
    track_info info;
    info.info_set("pregap", "two seconds");
    track_list tracks = {hostkit::make_plain_track("/music/1.flac", 60.0, info)};
    EXPECT_EQ(compute_musicbrainz_toc(tracks).offsets.front(), 150u);
    EXPECT_THROW(compute_musicbrainz_disc_id(std::vector<double>{60.0}, "two seconds"), exception_bad_cuesheet);
    // Cue index fields without a pregap keep the standard lead-in.
    track_info index;
    index.info_set("index 02", "00:10:00");
    tracks = {hostkit::make_plain_track("/music/1.flac", 60.0, index)};
    EXPECT_EQ(compute_musicbrainz_toc(tracks).offsets.front(), 150u);
}

TEST(musicbrainz_disc_id, a_track_without_a_length_shares_the_offset_of_the_next) {
    track_list tracks = mb_testing::tracks_of({100.0, 0.0, 50.0, -3.0, 20.0});
    musicbrainz_toc toc = compute_musicbrainz_toc(tracks);
    EXPECT_EQ(toc.offsets, (std::vector<std::uint64_t>{150, 7650, 7650, 11400, 11400}));
    EXPECT_EQ(toc.leadout, 150u + 170u * 75u);
}

TEST(musicbrainz_disc_id, a_track_without_an_info_record_adds_nothing) {
    // The host knows the middle track's length, but not from an info record.
    track_list tracks = mb_testing::tracks_of({100.0, 60.0, 50.0});
    tracks[1] = make_service<cddb_testing::test_track>(std::vector<double>{60.0}, std::nullopt);
    musicbrainz_toc toc = compute_musicbrainz_toc(tracks);
    EXPECT_EQ(toc.offsets, (std::vector<std::uint64_t>{150, 7650, 7650}));
    EXPECT_EQ(toc.leadout, 150u + 150u * 75u);

    // Without a record for the first track there is no pregap to read either.
    track_list first_unknown = cddb_testing::tracks_without_info({100.0, 50.0});
    EXPECT_EQ(compute_musicbrainz_toc(first_unknown).offsets, (std::vector<std::uint64_t>{150, 150}));
    EXPECT_EQ(compute_musicbrainz_toc(first_unknown).leadout, 150u);
}

TEST(musicbrainz_disc_id, the_lead_out_rounds_the_sum_once_while_offsets_round_each_length) {
    // Each half second is 37.5 frames: every offset step rounds up to 38, the sum of 112.5 once.
    musicbrainz_toc toc = compute_musicbrainz_toc(mb_testing::tracks_of({0.5, 0.5, 0.5}));
    EXPECT_EQ(toc.offsets, (std::vector<std::uint64_t>{150, 188, 226}));
    EXPECT_EQ(toc.leadout, 263u);  // not 264
}

TEST(musicbrainz_disc_id, numbers_wider_than_their_field_keep_every_digit) {
    // A lead-out above 0xFFFFFFFF frames (absurd, but the text must not truncate it) changes the
    // id, while a plain 32-bit value keeps its eight digits.
    musicbrainz_toc wide;
    wide.offsets = {150};
    wide.leadout = 0x100000000ull;
    musicbrainz_toc narrow = wide;
    narrow.leadout = 0;
    EXPECT_NE(musicbrainz_disc_id(wide), musicbrainz_disc_id(narrow));
}

// ---------------------------------------------------------------------------------------------
// The id's form, SHA-1 and base64

TEST(musicbrainz_disc_id, its_form_is_28_characters_of_the_url_safe_alphabet) {
    const std::pair<std::string, bool> cases[] = {
        {"4vi.H1hC7BRP18_a.7D4r4NOYL8-", true},
        {"............................", true},
        {"4vi.H1hC7BRP18_a.7D4r4NOYL8", false},    // 27
        {"4vi.H1hC7BRP18_a.7D4r4NOYL8--", false},  // 29
        {"../../../../../../../../../x", false},
        {"4vi+H1hC7BRP18_a.7D4r4NOYL8=", false},
        {"4vi.H1hC7BRP18\\a.7D4r4NOYL8-", false},
        {"4vi.H1hC7BRP18 a.7D4r4NOYL8-", false},
        {std::string("4vi.H1hC7BRP18\0a.7D4r4NOYL8-", 28), false},
        {"", false},
    };
    for (const auto& [text, is_id] : cases) EXPECT_EQ(is_disc_id_form(text), is_id) << text;
}

TEST(sha1_hasher, matches_the_published_digests_whether_fed_whole_or_in_pieces) {
    const std::pair<std::string, const char*> cases[] = {
        {"abc", "a9993e364706816aba3e25717850c26c9cd0d89d"},
        {"", "da39a3ee5e6b4b0d3255bfef95601890afd80709"},
        {"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq", "84983e441c3bd26ebaae4aa1f95129e5e54670f1"},
        {std::string(1000000, 'a'), "34aa973cd4c4daa4f61eeb2bdbad27316534016f"},
    };
    for (const auto& [text, digest] : cases) EXPECT_EQ(sha1_hex_of(text), digest) << text.substr(0, 20);
    sha1_hasher hasher;
    hasher.add("ab", 2);
    hasher.add("", 0);
    hasher.add("c", 1);
    std::vector<std::uint8_t> first = hasher.finish();
    EXPECT_EQ(lowercase_hex(first), "a9993e364706816aba3e25717850c26c9cd0d89d");
    // Finishing starts over.
    hasher.add("abc", 3);
    EXPECT_EQ(hasher.finish(), first);
    EXPECT_EQ(lowercase_hex({0x00, 0x0f, 0xa0, 0xff}), "000fa0ff");
}

TEST(base64, matches_the_standard_alphabet_and_padding_and_the_id_alphabet_replaces_three) {
    const std::pair<std::string, const char*> cases[] = {
        {"", ""},         {"M", "TQ=="},         {"Ma", "TWE="},         {"Man", "TWFu"},
        {"Many", "TWFueQ=="}, {"Many ", "TWFueSA="}, {"Many h", "TWFueSBo"}, {"\xfb\xff\xbf", "+/+/"},
    };
    for (const auto& [bytes, text] : cases)
        EXPECT_EQ(base64_encode(std::vector<std::uint8_t>(bytes.begin(), bytes.end())), text) << bytes;
    std::string text = "a+b/c=d+/==";
    to_disc_id_alphabet(text);
    EXPECT_EQ(text, "a.b_c-d._--");
}

} // namespace
