// xmcd entries into disc records: every real entry of the fixtures, the synthetic continuation
// and title-split cases, broken entries, and the parser's rules one by one.

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <tunehall/exceptions.h>

#include "cddb/read_handler.h"
#include "cddb/xmcd_parser.h"
#include "cddb_test_support.h"

namespace {

using cddb_testing::fixture_bytes;
using cddb_testing::lines_of;

// Parses lines the way a read answer's body is parsed, and finishes the record.
disc_record parse_lines(const std::vector<std::string>& lines) {
    disc_record record;
    xmcd_parser parser(record);
    for (const std::string& line : lines) parser.feed_line(line);
    finish_disc_record(record);
    return record;
}

// An entry as a server's read answer, through the real line splitter and read handler.
disc_record read_answer(const std::string& body, const std::string& category = "misc") {
    std::vector<disc_record> got;
    read_handler handler(category, [&](disc_record&& r) { got.push_back(std::move(r)); });
    std::string status = "210 " + category + " 00000000 CD database entry follows (until terminating `.')\r\n";
    cddb_testing::feed_answer(handler, status + body);
    if (got.size() != 1) throw std::runtime_error("expected one record, got " + std::to_string(got.size()));
    return std::move(got.front());
}

std::string entry(const std::string& name) { return fixture_bytes("xmcd/entries/" + name); }

std::string track_title(const disc_record& r, std::size_t t) { return r.get_track_field(t, disc_record::ttitle); }

std::string field(const disc_record& r, disc_record::field f) { return r.get_field(f); }

void expect_data_error(const std::function<void()>& action, const std::string& text) {
    try {
        action();
        ADD_FAILURE() << "no failure, expected " << text;
    } catch (const tunehall_io::exception_io_data& e) {
        EXPECT_EQ(std::string(e.what()), text);
    }
}

// --- Real entries -----------------------------------------------------------------------------

TEST(xmcd_real_entries, each_gives_the_toc_and_texts_it_holds) {
    std::vector<cddb_testing::fixture_disc> discs = cddb_testing::fixture_discs();
    ASSERT_EQ(discs.size(), 16u);
    int parsed = 0;
    for (const auto& d : discs) {
        SCOPED_TRACE(d.file);
        std::string bytes = entry(d.file);
        if (d.file.find(".latin1.") != std::string::npos) continue;  // not UTF-8: see below
        // Terminated the way servers end a body; a missing final line feed is added first.
        if (bytes.back() != '\n') bytes += "\r\n";
        disc_record r = read_answer(bytes + ".\r\n", "rock");
        EXPECT_STREQ(r.get_field(disc_record::category), "rock");
        EXPECT_EQ(field(r, disc_record::discid), d.discid_field);
        ASSERT_EQ(r.get_track_count(), d.track_count);
        for (std::size_t t = 0; t < d.track_count; ++t) {
            EXPECT_EQ(r.get_track_offset(t), d.offsets[t]) << "track " << t;
            EXPECT_FALSE(track_title(r, t).empty()) << "track " << t;
        }
        EXPECT_EQ(r.get_disc_length(), d.disc_seconds);
        EXPECT_FALSE(field(r, disc_record::dtitle).empty());
        ++parsed;
    }
    EXPECT_EQ(parsed, 15);
}

struct entry_text_case {
    const char* file;
    std::string (*get)(const disc_record&);
    std::string expected;
};

std::string dtitle_of(const disc_record& r) { return field(r, disc_record::dtitle); }
std::string dyear_of(const disc_record& r) { return field(r, disc_record::dyear); }
std::string dgenre_of(const disc_record& r) { return field(r, disc_record::dgenre); }
std::string extd_of(const disc_record& r) { return field(r, disc_record::extd); }
std::string submitted_of(const disc_record& r) { return field(r, disc_record::submitted_via); }
std::string revision_of(const disc_record& r) { return std::to_string(r.get_revision()); }
std::string various_of(const disc_record& r) { return r.get_various_artists() ? "various" : "single"; }
std::string title0_of(const disc_record& r) { return track_title(r, 0); }
std::string title3_of(const disc_record& r) { return track_title(r, 3); }
std::string title6_of(const disc_record& r) { return track_title(r, 6); }
std::string last_title_of(const disc_record& r) { return track_title(r, r.get_track_count() - 1); }

class xmcd_entry_texts : public testing::TestWithParam<entry_text_case> {};

TEST_P(xmcd_entry_texts, match_the_entry) {
    disc_record r = parse_lines(lines_of(entry(GetParam().file)));
    EXPECT_EQ(GetParam().get(r), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    entries, xmcd_entry_texts,
    testing::Values(
        entry_text_case{"12025d03.xmcd", dtitle_of, "Ernest Ray Everett - Single CD"},
        entry_text_case{"12025d03.xmcd", submitted_of, "FreeRIP 2.93 "},  // trailing space kept
        entry_text_case{"12025d03.xmcd", various_of, "single"},
        entry_text_case{"12025d03.xmcd", revision_of, "0"},
        // Continuations split mid-word join without a separator.
        entry_text_case{"6f0c6509.xmcd", title0_of,
                        "Sonata No. 14 in C-sharp Minor, Op. 27, No. 2 Moonlight - I. Adagio sostenuto"},
        entry_text_case{"6f0c6509.xmcd", title3_of,
                        "Sonata No. 8 in C Minor, Op. 13 Pathetique - I. Grove; Allegro molto e con brio"},
        entry_text_case{"6f0c6509.xmcd", title6_of, "Sonata No. 23 in F Minor, Op. 57 Appassionata - I. Allegro assai"},
        entry_text_case{"6f0c6509.xmcd", revision_of, "2"},
        entry_text_case{"6f0c6509.xmcd", submitted_of, "ExactAudioCopy v0.95a1"},
        entry_text_case{"840e160b.xmcd", dgenre_of, "Symphonic Metal"},
        entry_text_case{"840e160b.xmcd", extd_of, " YEAR: 2004"},
        entry_text_case{"8608460b.xmcd", extd_of, " YEAR: 1978 ID3G: 17"},
        entry_text_case{"9c0eac0c.xmcd", dyear_of, ""},
        entry_text_case{"9c0eac0c.xmcd", extd_of, "ID3G:  32"},
        entry_text_case{"9c0eac0c.xmcd", submitted_of, "FreeRIP 1.20"},
        entry_text_case{"9c0eac0c.xmcd", revision_of, "4"},
        // One artist, but two track titles contain " / ": the rule marks it various.
        entry_text_case{"9e0e740c.xmcd", various_of, "various"},
        entry_text_case{"9e0e740c.xmcd", title0_of, "Drowned world / substitue for love"},
        entry_text_case{"b20cd40d.xmcd", various_of, "single"},
        entry_text_case{"d1115d11.xmcd", dgenre_of, "other"},
        entry_text_case{"fd0b9912.xmcd", various_of, "single"},
        entry_text_case{"af10420e.xmcd", extd_of,
                        "Recorded Live In Germany\nVocals & Guitar - Heather Nova\nLead Guitar - Berit Fridahl\n"
                        "Cello & Keyboards - Nadia Lanman\nBass & Backing Vocals - Bastian Juel\n"
                        "Drums - Laurie Jenkins"},
        entry_text_case{"af10420e.xmcd", dgenre_of, ""},
        entry_text_case{"af10420e.xmcd", submitted_of, "gmmusic 1.0"},
        entry_text_case{"a10b600c.crlf.xmcd", revision_of, "16"},
        entry_text_case{"a10b600c.crlf.xmcd", dtitle_of, "Motorhead / Inferno"},
        entry_text_case{"a10b600c.crlf.xmcd", last_title_of, "Whorehouse Blues"},
        entry_text_case{"d50dd30f.xmcd", various_of, "various"},
        entry_text_case{"d50dd30f.xmcd", extd_of, " YEAR: 1997"},
        entry_text_case{"2f0d8939.57tracks.xmcd", extd_of, " YEAR: 2007"},
        entry_text_case{"2f0d8939.57tracks.xmcd", dyear_of, ""},
        entry_text_case{"2f0d8939.57tracks.xmcd", dgenre_of, ""}));

TEST(xmcd_real_entries, the_57_track_entry_has_every_title) {
    disc_record r = parse_lines(lines_of(entry("2f0d8939.57tracks.xmcd")));
    ASSERT_EQ(r.get_track_count(), 57u);
    EXPECT_EQ(dtitle_of(r), "Dan Levenson / Old Time Festival Tunes For Clawhammer Banjo (Disc 2)");
    for (std::size_t t = 0; t < 57; ++t) EXPECT_FALSE(track_title(r, t).empty()) << t;
}

TEST(xmcd_real_entries, crlf_lines_reach_the_parser_without_their_cr) {
    // Through the line splitter every field ends where the text ends.
    disc_record r = read_answer(entry("a10b600c.crlf.xmcd") + ".\r\n");
    EXPECT_EQ(dgenre_of(r), "Metal");
    for (std::size_t t = 0; t < r.get_track_count(); ++t)
        EXPECT_EQ(track_title(r, t).find('\r'), std::string::npos) << t;
    EXPECT_EQ(submitted_of(r), "audiograbber 1.83.01");
}

TEST(xmcd_real_entries, an_answer_cut_after_a_last_line_without_line_feed_still_gives_it) {
    // The entry has no line feed after PLAYORDER=, and no "." follows.
    std::string bytes = entry("d50dd30f.xmcd");
    ASSERT_NE(bytes.back(), '\n');
    disc_record r = read_answer(bytes);
    EXPECT_EQ(r.get_track_count(), 15u);
    EXPECT_EQ(extd_of(r), " YEAR: 1997");
    EXPECT_TRUE(r.get_various_artists());
}

TEST(xmcd_real_entries, latin1_bytes_are_refused_before_parsing) {
    std::string bytes = entry("38043805.latin1.xmcd");
    expect_data_error([&] { read_answer(bytes + ".\r\n"); }, "Unsupported format or corrupted file");
}

// --- Synthetic continuation and title cases -------------------------------------------------

std::string libcddb(const std::string& id) { return fixture_bytes("xmcd/libcddb-tests/" + id + ".xmcd"); }

struct title_case {
    const char* id;
    std::string dtitle;
    std::string artist;
    std::string album;
};

class xmcd_disc_titles : public testing::TestWithParam<title_case> {};

TEST_P(xmcd_disc_titles, join_continuations_and_split_at_the_first_spaced_slash) {
    disc_record r = parse_lines(lines_of(libcddb(GetParam().id)));
    EXPECT_EQ(dtitle_of(r), GetParam().dtitle);
    artist_and_album parts = split_dtitle(r.get_field(disc_record::dtitle));
    EXPECT_EQ(parts.artist, GetParam().artist);
    EXPECT_EQ(parts.album, GetParam().album);
    EXPECT_FALSE(r.get_various_artists());
}

INSTANTIATE_TEST_SUITE_P(
    libcddb_tests, xmcd_disc_titles,
    testing::Values(title_case{"12345674", "DiscTitle", "DiscTitle", "DiscTitle"},
                    title_case{"12345675", "DiscTitle", "DiscTitle", "DiscTitle"},
                    title_case{"12345676", "DiscTitle cntd.", "DiscTitle cntd.", "DiscTitle cntd."},
                    title_case{"12345677", "DiscTitle cntd.", "DiscTitle cntd.", "DiscTitle cntd."},
                    title_case{"12345679", "DiscArtist cntd. / DiscTitle", "DiscArtist cntd.", "DiscTitle"},
                    title_case{"1234567a", "DiscArtist cntd. / DiscTitle", "DiscArtist cntd.", "DiscTitle"},
                    title_case{"1234567b", "DiscArtist / DiscTitle", "DiscArtist", "DiscTitle"},
                    title_case{"1234567c", "DiscArtist / DiscTitle cntd.", "DiscArtist", "DiscTitle cntd."},
                    title_case{"1234567d", "DiscArtist / DiscTitle cntd.", "DiscArtist", "DiscTitle cntd."},
                    title_case{"1234567e", "Disc/Artist / DiscTitle", "Disc/Artist", "DiscTitle"},
                    title_case{"1234567f", "Disc/ Artist / DiscTitle", "Disc/ Artist", "DiscTitle"},
                    title_case{"12345680", "Disc /Artist / DiscTitle", "Disc /Artist", "DiscTitle"},
                    title_case{"12345681", "DiscArtist / Disc/Title", "DiscArtist", "Disc/Title"},
                    title_case{"12345682", "DiscArtist / Disc/ Title", "DiscArtist", "Disc/ Title"},
                    title_case{"12345683", "DiscArtist / Disc /Title", "DiscArtist", "Disc /Title"}));

TEST(xmcd_libcddb_tests, continued_extd_joins_like_the_title) {
    EXPECT_EQ(extd_of(parse_lines(lines_of(libcddb("12345675")))), "DiscExt");
    EXPECT_EQ(extd_of(parse_lines(lines_of(libcddb("12345676")))), "DiscExt cntd.");
    EXPECT_EQ(extd_of(parse_lines(lines_of(libcddb("12345677")))), "DiscExt cntd.");
    // The DISCID line is taken as written, even when it does not match the file.
    EXPECT_EQ(field(parse_lines(lines_of(libcddb("12345675"))), disc_record::discid), "12345674");
}

TEST(xmcd_libcddb_tests, utf8_texts_arrive_intact) {
    disc_record r = read_answer(libcddb("12340000") + ".\n");
    const std::string aii = "A\xC3\xAFi";
    EXPECT_EQ(dtitle_of(r), aii + " / " + aii);
    EXPECT_EQ(title0_of(r), aii);
    EXPECT_EQ(extd_of(r), aii);
    EXPECT_EQ(std::string(r.get_track_field(0, disc_record::extt)), aii);
    EXPECT_EQ(r.get_track_offset(0), 150u);
    EXPECT_EQ(r.get_disc_length(), 2000u);  // "Disc length:   2000 seconds"
    EXPECT_EQ(r.get_revision(), 0u);        // no Revision line
    EXPECT_EQ(dyear_of(r), "2004");
}

TEST(xmcd_libcddb_tests, sixteen_tracks_with_split_titles_and_mixed_offset_indents) {
    disc_record r = parse_lines(lines_of(libcddb("12345678")));
    ASSERT_EQ(r.get_track_count(), 16u);
    for (std::uint32_t t = 0; t < 16; ++t) EXPECT_EQ(r.get_track_offset(t), t * 750) << t;
    const char* titles[] = {"TrackTitle1",
                            "TrackArtist2 / TrackTitle2",
                            "TrackArtist3 cntd. / TrackTitle3",
                            "TrackArtist4 cntd. / TrackTitle4",
                            "TrackArtist5 / TrackTitle5",
                            "TrackArtist6 / TrackTitle6 cntd.",
                            "TrackArtist7 / TrackTitle7 cntd.",
                            "Track/Artist8 / TrackTitle8",
                            "Track/ Artist9 / TrackTitle9",
                            "Track /Artist10 / TrackTitle10",
                            "TrackArtist11 / Track/Title11",
                            "TrackArtist12 / Track/ Title12",
                            "TrackArtist10 / Track /Title13",
                            "TrackTitle14",
                            "TrackTitle15 cntd.",
                            "TrackTitle16 cntd."};
    for (std::size_t t = 0; t < 16; ++t) EXPECT_EQ(track_title(r, t), titles[t]) << t;
    const char* ext[] = {"TrackExt1", "TrackExt2", "TrackExt3 cntd.", "TrackExt4 cntd."};
    for (std::size_t t = 0; t < 4; ++t) EXPECT_EQ(std::string(r.get_track_field(t, disc_record::extt)), ext[t]) << t;
    EXPECT_STREQ(r.get_track_field(4, disc_record::extt), "");
    EXPECT_EQ(r.get_disc_length(), 160u);
    EXPECT_EQ(r.get_revision(), 1u);
    // A single artist on the disc, but track titles name their own.
    EXPECT_TRUE(r.get_various_artists());
}

// --- Broken and generated entries -----------------------------------------------------------

std::string odd(const std::string& name) { return fixture_bytes("xmcd/odd/" + name); }

TEST(xmcd_odd_entries, a_disc_length_in_words_reads_as_zero) {
    disc_record r = parse_lines(lines_of(odd("c00ccd0d-corrupt_disc_length.xmcd")));
    EXPECT_EQ(r.get_disc_length(), 0u);
    EXPECT_EQ(r.get_track_count(), 13u);
    EXPECT_EQ(r.get_track_offset(12), 230516u);
}

TEST(xmcd_odd_entries, an_offset_with_letters_keeps_its_leading_digits) {
    disc_record r = parse_lines(lines_of(odd("c00ccd0d-corrupt_offset_integer.xmcd")));
    EXPECT_EQ(r.get_track_offset(1), 17u);
    EXPECT_EQ(r.get_track_offset(2), 34092u);
    EXPECT_EQ(r.get_disc_length(), 3279u);
}

TEST(xmcd_odd_entries, a_missing_last_offset_leaves_that_track_unknown) {
    disc_record r = parse_lines(lines_of(odd("c00ccd0d-corrupt_offset_last_line_missing.xmcd")));
    ASSERT_EQ(r.get_track_count(), 13u);
    EXPECT_EQ(r.get_track_offset(11), 216406u);
    EXPECT_EQ(r.get_track_offset(12), 0xFFFFFFFFu);
    EXPECT_EQ(track_title(r, 12), "Hiding My Heart");
}

TEST(xmcd_odd_entries, a_missing_title_line_leaves_that_title_empty) {
    disc_record r = parse_lines(lines_of(odd("c00ccd0d-corrupt_song_7_missing.xmcd")));
    ASSERT_EQ(r.get_track_count(), 13u);
    EXPECT_EQ(track_title(r, 6), "Take It All");
    EXPECT_EQ(track_title(r, 7), "");
    EXPECT_EQ(track_title(r, 8), "One And Only");
}

TEST(xmcd_odd_entries, a_generated_entry_with_an_escape_and_a_mid_word_split) {
    disc_record r = parse_lines(lines_of(odd("cddb-fake-cddb1.xmcd")));
    EXPECT_EQ(extd_of(r), "Generated by ls2nocddb 1.4* on Fri Jul 25 14:31:41 200\n     7. Try to distract");
    EXPECT_EQ(field(r, disc_record::discid), "00000000");
    EXPECT_EQ(submitted_of(r), "");
    EXPECT_EQ(r.get_revision(), 0u);
    EXPECT_EQ(r.get_disc_length(), 1788u);
    ASSERT_EQ(r.get_track_count(), 6u);
    EXPECT_EQ(r.get_track_offset(5), 106350u);
    EXPECT_EQ(std::string(r.get_track_field(3, disc_record::extt)),
              "This popular track is performed better than ever.");
    EXPECT_FALSE(r.get_various_artists());
}

TEST(xmcd_odd_entries, an_entry_without_offsets_or_length_keeps_them_unknown) {
    disc_record r = parse_lines(lines_of(odd("cddb-fake-cddb2.xmcd")));
    EXPECT_EQ(r.get_disc_length(), 0xFFFFFFFFu);
    ASSERT_EQ(r.get_track_count(), 6u);
    for (std::size_t t = 0; t < 6; ++t) EXPECT_EQ(r.get_track_offset(t), 0xFFFFFFFFu);
    EXPECT_EQ(extd_of(r), "Generated\nby\nls2nocddb");
    EXPECT_EQ(std::string(r.get_track_field(1, disc_record::extt)), "This is\na great recording.");
    EXPECT_TRUE(r.get_various_artists());  // "Various / Various"
}

TEST(xmcd_odd_entries, offsets_below_the_lead_in_and_more_offsets_than_titles) {
    disc_record r = parse_lines(lines_of(odd("decafbad.xmcd")));
    ASSERT_EQ(r.get_track_count(), 3u);
    EXPECT_EQ(r.get_track_offset(0), 100u);
    EXPECT_EQ(r.get_track_offset(2), 60000u);
    EXPECT_EQ(track_title(r, 1), "So Long That It Wraps Around");
    EXPECT_EQ(track_title(r, 2), "");
    EXPECT_EQ(dgenre_of(r), "Math Rock");
}

// --- Rules one by one -----------------------------------------------------------------------

const std::vector<std::string> header = {"# xmcd", "#", "# Track frame offsets:", "#\t150",
                                         "#",      "# Disc length: 100 seconds"};

std::vector<std::string> with_header(std::vector<std::string> lines) {
    lines.insert(lines.begin(), header.begin(), header.end());
    return lines;
}

TEST(xmcd_parser, a_track_title_beyond_the_count_grows_the_tracks) {
    disc_record r = parse_lines(with_header({"TTITLE0=a", "TTITLE1=b", "TTITLE2=c", "TTITLE12=twelve"}));
    ASSERT_EQ(r.get_track_count(), 13u);
    EXPECT_EQ(track_title(r, 12), "twelve");
    for (std::size_t t = 3; t < 12; ++t) {
        EXPECT_EQ(track_title(r, t), "") << t;
        EXPECT_EQ(r.get_track_offset(t), 0xFFFFFFFFu) << t;
    }
    EXPECT_EQ(r.get_track_offset(0), 150u);
}

TEST(xmcd_parser, repeated_keywords_concatenate_without_a_separator) {
    disc_record r = parse_lines(
        with_header({"DTITLE=Artist / Al", "DTITLE=bum", "TTITLE0=Sun", "EXTT0=x", "TTITLE0=day", "EXTT0=y"}));
    EXPECT_EQ(dtitle_of(r), "Artist / Album");
    EXPECT_EQ(title0_of(r), "Sunday");
    EXPECT_STREQ(r.get_track_field(0, disc_record::extt), "xy");
}

TEST(xmcd_parser, values_are_unescaped) {
    disc_record r = parse_lines(with_header({"EXTD=line1\\nline2", "TTITLE0=a\\xb", "EXTT0=tab\\there"}));
    EXPECT_EQ(extd_of(r), "line1\nline2");
    EXPECT_EQ(title0_of(r), "a");
    EXPECT_STREQ(r.get_track_field(0, disc_record::extt), "tab\there");
}

TEST(xmcd_parser, the_signature_must_come_first_and_exactly) {
    for (const char* first : {"# Revision: 3", "# XMCD", "#xmcd", "# xmc", "#", "# Track frame offsets:"}) {
        SCOPED_TRACE(first);
        disc_record r;
        xmcd_parser parser(r);
        expect_data_error([&] { parser.feed_line(first); }, "CDDB: Signature mismatch");
    }
    disc_record r;
    xmcd_parser parser(r);
    EXPECT_NO_THROW(parser.feed_line("# xmcd CD database file"));
    // Once signed, a "# xmcd" line later on is an ordinary comment.
    EXPECT_NO_THROW(parser.feed_line("# xmcd again"));
}

TEST(xmcd_parser, keyword_lines_before_the_signature_are_accepted) {
    disc_record r = parse_lines({"DTITLE=Early / Bird", "# xmcd", "TTITLE0=one"});
    EXPECT_EQ(dtitle_of(r), "Early / Bird");
    EXPECT_EQ(r.get_track_count(), 1u);
}

TEST(xmcd_parser, an_unknown_keyword_fails_with_the_whole_line) {
    for (const char* line : {"TTITLE=no number", "TTITLE1 no equals", "TTITLE1", "ttitle1=lower", "DTITLE x",
                             " DTITLE=indented", "EXTD5=x", "EXTT=x", "TTITLEx=1", "PLAYORDER", "GENRE=Rock",
                             "TTITLE10000=beyond any disc"}) {
        SCOPED_TRACE(line);
        disc_record r;
        xmcd_parser parser(r);
        parser.feed_line("# xmcd");
        expect_data_error([&] { parser.feed_line(line); }, std::string("CDDB: Unrecognized keyword '") + line + "'");
    }
}

TEST(xmcd_parser, playorder_and_empty_lines_change_nothing) {
    disc_record plain = parse_lines(with_header({"DTITLE=A / B", "TTITLE0=x"}));
    disc_record with = parse_lines(with_header({"", "PLAYORDER=3,2,1", "DTITLE=A / B", "", "PLAYORDER=", "TTITLE0=x"}));
    EXPECT_EQ(dtitle_of(with), dtitle_of(plain));
    EXPECT_EQ(with.get_track_count(), plain.get_track_count());
    EXPECT_EQ(title0_of(with), title0_of(plain));
}

TEST(xmcd_parser, header_comments_match_without_regard_to_case) {
    disc_record r = parse_lines({"# xmcd", "# TRACK FRAME OFFSETS:", "#  150", "#\t \t9000",
                                 "# disc LENGTH:\t 2917 seconds", "#revision:5", "#   submitted VIA:  \tripper 2.0"});
    ASSERT_EQ(r.get_track_count(), 2u);
    EXPECT_EQ(r.get_track_offset(1), 9000u);
    EXPECT_EQ(r.get_disc_length(), 2917u);
    EXPECT_EQ(r.get_revision(), 5u);
    EXPECT_EQ(submitted_of(r), "ripper 2.0");
}

TEST(xmcd_parser, blank_comment_lines_do_not_end_the_offset_list) {
    disc_record r =
        parse_lines({"# xmcd", "# Track frame offsets:", "# 150", "#", "#   ", "# 300", "# Revision: 2", "# 450"});
    ASSERT_EQ(r.get_track_count(), 2u);
    EXPECT_EQ(r.get_track_offset(1), 300u);
    EXPECT_EQ(r.get_revision(), 2u);
}

TEST(xmcd_parser, comments_after_submitted_via_are_ignored) {
    disc_record r = parse_lines({"# xmcd", "# Revision: 1", "# Submitted via: a", "# Revision: 9", "# Disc length: 5",
                                 "# Track frame offsets:", "# 150", "# Submitted via: b"});
    EXPECT_EQ(r.get_revision(), 1u);
    EXPECT_EQ(r.get_disc_length(), 0xFFFFFFFFu);
    EXPECT_EQ(r.get_track_count(), 0u);
    EXPECT_EQ(submitted_of(r), "a");
}

TEST(xmcd_parser, a_revision_before_the_signature_fails) {
    disc_record r;
    xmcd_parser parser(r);
    expect_data_error([&] { parser.feed_line("# Revision: 3"); }, "CDDB: Signature mismatch");
}

struct various_case {
    std::string dtitle;
    std::vector<std::string> titles;
    bool various;
};

class various_artists_rule : public testing::TestWithParam<various_case> {};

TEST_P(various_artists_rule, decides_from_the_artist_then_the_track_titles) {
    std::vector<std::string> lines = {"# xmcd", "DTITLE=" + GetParam().dtitle};
    for (std::size_t t = 0; t < GetParam().titles.size(); ++t)
        lines.push_back("TTITLE" + std::to_string(t) + "=" + GetParam().titles[t]);
    EXPECT_EQ(parse_lines(lines).get_various_artists(), GetParam().various) << GetParam().dtitle;
}

INSTANTIATE_TEST_SUITE_P(
    titles, various_artists_rule,
    testing::Values(various_case{"Various / Hits", {"a", "b"}, true},
                    various_case{"VARIOUS ARTISTS / Hits", {"a"}, true},
                    various_case{"various artists / Hits", {}, true},
                    various_case{"Various", {"a"}, true},  // no " / ": the artist is the whole title
                    various_case{"Various Artist / Hits", {"a"}, false},
                    various_case{"Various  Artists / Hits", {"a"}, false},
                    various_case{"The Various / Hits", {"a"}, false},
                    various_case{"Band / Album", {"a", "Singer / Song"}, true},
                    various_case{"Band / Album", {"a/b", "c /d", "e/ f"}, false},
                    various_case{"Band / Album", {}, false}));

TEST(xmcd_finish, resets_a_flag_set_before) {
    disc_record r;
    r.set_field(disc_record::dtitle, "Band / Album");
    r.set_various_artists(true);
    finish_disc_record(r);
    EXPECT_FALSE(r.get_various_artists());
}

} // namespace
