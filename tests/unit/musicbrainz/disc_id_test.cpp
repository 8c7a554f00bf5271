// The MusicBrainz disc id of the selected tracks: its table of contents, the hashed text, SHA-1
// and the base64 variant, checked against discs whose ids the database already holds.

#include <cctype>
#include <functional>
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

void expect_invalid_argument(const std::function<void()>& action) {
    try {
        action();
        ADD_FAILURE() << "accepted";
    } catch (const std::invalid_argument& e) {
        EXPECT_STREQ(e.what(), "invalid argument");
    }
}

track_list plain_tracks(std::size_t count, double seconds) {
    return mb_testing::tracks_of(std::vector<double>(count, seconds));
}

// ---------------------------------------------------------------------------------------------
// Known discs

class known_disc_ids : public testing::TestWithParam<known_disc> {};

TEST_P(known_disc_ids, tracks_laid_out_like_the_disc_get_its_id) {
    const known_disc& disc = GetParam();
    musicbrainz_toc toc = compute_musicbrainz_toc(mb_testing::tracks_of(disc));
    EXPECT_EQ(toc.offsets, disc.offsets);
    EXPECT_EQ(toc.leadout, disc.leadout);
    EXPECT_EQ(musicbrainz_disc_id(toc), disc.id);
}

TEST_P(known_disc_ids, plain_lengths_with_the_pregap_get_the_same_id) {
    const known_disc& disc = GetParam();
    const std::string pregap = mb_testing::pregap_of(disc);
    const std::vector<double> lengths = mb_testing::lengths_of(disc);
    EXPECT_EQ(compute_musicbrainz_disc_id(lengths, pregap.empty() ? nullptr : pregap.c_str()), disc.id);
}

TEST_P(known_disc_ids, have_the_form_of_an_id) {
    const std::string id = compute_musicbrainz_disc_id(mb_testing::tracks_of(GetParam()));
    EXPECT_EQ(id.size(), 28u);
    EXPECT_EQ(id.back(), '-');
    EXPECT_EQ(id.find_first_of("+/="), std::string::npos);
    EXPECT_TRUE(is_disc_id_form(id));
}

std::string disc_name(const testing::TestParamInfo<known_disc>& info) {
    std::string name = info.param.id;
    for (char& c : name)
        if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
    return name;
}

// Read when the tests are listed: the rows are the test cases.
INSTANTIATE_TEST_SUITE_P(fixture_tsv, known_disc_ids, testing::ValuesIn(mb_testing::fixture_discs()), disc_name);
INSTANTIATE_TEST_SUITE_P(server_answers, known_disc_ids, testing::ValuesIn(mb_testing::server_discs()), disc_name);

TEST(musicbrainz_disc_id, the_fixture_table_has_all_eleven_discs) {
    EXPECT_EQ(mb_testing::fixture_discs().size(), 11u);
    EXPECT_EQ(mb_testing::server_discs().size(), 3u);
}

TEST(musicbrainz_disc_id, toc_text_is_the_web_services_notation) {
    const known_disc disc = mb_testing::disc_with_id("pmzhT6ZlFiwSRCdVwV0eqire5_Y-");
    EXPECT_EQ(musicbrainz_toc_text(compute_musicbrainz_toc(mb_testing::tracks_of(disc))),
              "1+9+217171+150+35000+63711+86440+105891+128017+154668+177007+200379");
}

// ---------------------------------------------------------------------------------------------
// The table of contents

TEST(musicbrainz_disc_id, one_track_of_three_minutes_hashes_the_documented_text) {
    track_list tracks = plain_tracks(1, 180.0);
    musicbrainz_toc toc = compute_musicbrainz_toc(tracks);
    EXPECT_EQ(toc.offsets, (std::vector<std::uint64_t>{150}));
    EXPECT_EQ(toc.leadout, 13650u);

    std::string text = std::string("01") + "01" + "00003552" + "00000096";
    for (int i = 0; i < 98; ++i) text += "00000000";
    ASSERT_EQ(text.size(), 804u);
    // The id is the hash of the whole text, although it is hashed in pieces.
    sha1_hasher hasher;
    hasher.add(text);
    std::string expected = base64_encode(hasher.finish());
    to_disc_id_alphabet(expected);
    EXPECT_EQ(compute_musicbrainz_disc_id(tracks), expected);
}

TEST(musicbrainz_disc_id, ninety_nine_tracks_are_accepted_and_other_counts_refused) {
    EXPECT_EQ(compute_musicbrainz_disc_id(plain_tracks(99, 30.0)).size(), 28u);
    EXPECT_EQ(compute_musicbrainz_toc(plain_tracks(99, 30.0)).offsets.back(), 150u + 98u * 2250u);
    expect_invalid_argument([] { compute_musicbrainz_disc_id(plain_tracks(100, 30.0)); });
    expect_invalid_argument([] { compute_musicbrainz_disc_id(track_list{}); });
    expect_invalid_argument([] { compute_musicbrainz_disc_id(std::vector<double>(100, 30.0)); });
    expect_invalid_argument([] { compute_musicbrainz_disc_id(std::vector<double>{}); });
    expect_invalid_argument([] { musicbrainz_disc_id(musicbrainz_toc{}); });
}

TEST(musicbrainz_disc_id, a_two_second_pregap_moves_every_offset_and_the_lead_out) {
    const std::vector<double> lengths = {180.0, 240.2, 300.5};
    track_info info;
    info.info_set("pregap", "00:02:00");
    track_list with_pregap = mb_testing::tracks_of(lengths);
    with_pregap[0] = hostkit::make_plain_track("/music/1.flac", lengths[0], info);

    musicbrainz_toc plain = compute_musicbrainz_toc(mb_testing::tracks_of(lengths));
    musicbrainz_toc shifted = compute_musicbrainz_toc(with_pregap);
    EXPECT_EQ(plain.offsets, (std::vector<std::uint64_t>{150, 13650, 31665}));
    EXPECT_EQ(shifted.offsets, (std::vector<std::uint64_t>{300, 13800, 31815}));
    EXPECT_EQ(shifted.leadout, plain.leadout + 150);
    EXPECT_NE(musicbrainz_disc_id(shifted), musicbrainz_disc_id(plain));
    EXPECT_EQ(compute_musicbrainz_disc_id(lengths, "00:02:00"), musicbrainz_disc_id(shifted));
}

TEST(musicbrainz_disc_id, cue_index_fields_without_a_pregap_keep_the_standard_lead_in) {
    track_info info;
    info.info_set("index 02", "00:10:00");
    track_list tracks = {hostkit::make_plain_track("/music/1.flac", 60.0, info)};
    EXPECT_EQ(compute_musicbrainz_toc(tracks).offsets.front(), 150u);
}

TEST(musicbrainz_disc_id, an_unreadable_pregap_counts_as_none_on_a_track_but_is_refused_as_an_argument) {
    track_info info;
    info.info_set("pregap", "two seconds");
    track_list tracks = {hostkit::make_plain_track("/music/1.flac", 60.0, info)};
    EXPECT_EQ(compute_musicbrainz_toc(tracks).offsets.front(), 150u);
    EXPECT_THROW(compute_musicbrainz_disc_id(std::vector<double>{60.0}, "two seconds"), exception_bad_cuesheet);
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
// The id's form

struct form_case {
    std::string text;
    bool is_id;
};

class disc_id_form : public testing::TestWithParam<form_case> {};

TEST_P(disc_id_form, is_recognised) {
    EXPECT_EQ(is_disc_id_form(GetParam().text), GetParam().is_id) << GetParam().text;
}

INSTANTIATE_TEST_SUITE_P(texts, disc_id_form,
                         testing::Values(form_case{"4vi.H1hC7BRP18_a.7D4r4NOYL8-", true},
                                         form_case{"............................", true},
                                         form_case{"4vi.H1hC7BRP18_a.7D4r4NOYL8", false},    // 27
                                         form_case{"4vi.H1hC7BRP18_a.7D4r4NOYL8--", false},  // 29
                                         form_case{"../../../../../../../../../x", false},
                                         form_case{"4vi+H1hC7BRP18_a.7D4r4NOYL8=", false},
                                         form_case{"4vi.H1hC7BRP18\\a.7D4r4NOYL8-", false},
                                         form_case{"4vi.H1hC7BRP18 a.7D4r4NOYL8-", false},
                                         form_case{std::string("4vi.H1hC7BRP18\0a.7D4r4NOYL8-", 28), false},
                                         form_case{"", false}));

// ---------------------------------------------------------------------------------------------
// SHA-1 and base64

struct digest_case {
    std::string text;
    std::string sha1;
};

class sha1_vectors : public testing::TestWithParam<digest_case> {};

TEST_P(sha1_vectors, match_the_published_digests) { EXPECT_EQ(sha1_hex_of(GetParam().text), GetParam().sha1); }

INSTANTIATE_TEST_SUITE_P(
    fips_180, sha1_vectors,
    testing::Values(digest_case{"abc", "a9993e364706816aba3e25717850c26c9cd0d89d"},
                    digest_case{"", "da39a3ee5e6b4b0d3255bfef95601890afd80709"},
                    digest_case{"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq",
                                "84983e441c3bd26ebaae4aa1f95129e5e54670f1"},
                    digest_case{std::string(1000000, 'a'), "34aa973cd4c4daa4f61eeb2bdbad27316534016f"}));

TEST(sha1_hasher, pieces_hash_like_the_whole_and_finish_starts_over) {
    sha1_hasher hasher;
    hasher.add("ab", 2);
    hasher.add("", 0);
    hasher.add("c", 1);
    std::vector<std::uint8_t> first = hasher.finish();
    EXPECT_EQ(first.size(), 20u);
    EXPECT_EQ(lowercase_hex(first), "a9993e364706816aba3e25717850c26c9cd0d89d");
    hasher.add("abc", 3);
    EXPECT_EQ(hasher.finish(), first);
}

TEST(lowercase_hex, writes_two_digits_per_byte) {
    EXPECT_EQ(lowercase_hex({0x00, 0x0f, 0xa0, 0xff}), "000fa0ff");
    EXPECT_EQ(lowercase_hex({}), "");
}

struct base64_case {
    std::string bytes;
    std::string text;
};

class base64_vectors : public testing::TestWithParam<base64_case> {};

TEST_P(base64_vectors, match_the_standard_alphabet_and_padding) {
    const std::string& b = GetParam().bytes;
    EXPECT_EQ(base64_encode(std::vector<std::uint8_t>(b.begin(), b.end())), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(every_padding, base64_vectors,
                         testing::Values(base64_case{"", ""}, base64_case{"M", "TQ=="}, base64_case{"Ma", "TWE="},
                                         base64_case{"Man", "TWFu"}, base64_case{"Many", "TWFueQ=="},
                                         base64_case{"Many ", "TWFueSA="}, base64_case{"Many h", "TWFueSBo"},
                                         base64_case{"\xfb\xff\xbf", "+/+/"}));

TEST(disc_id_alphabet, replaces_the_three_url_unsafe_characters) {
    std::string text = "a+b/c=d+/==";
    to_disc_id_alphabet(text);
    EXPECT_EQ(text, "a.b_c-d._--");
}

TEST(disc_id_alphabet, a_twenty_byte_digest_gives_twenty_seven_characters_and_one_dash) {
    std::string id = base64_encode(std::vector<std::uint8_t>(20, 0xFF));
    EXPECT_EQ(id, "//////////////////////////8=");
    to_disc_id_alphabet(id);
    EXPECT_EQ(id, "__________________________8-");
}

} // namespace
