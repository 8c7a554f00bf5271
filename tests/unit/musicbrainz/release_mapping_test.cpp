// The release as the dialog shows and reads it back, and what it writes into a track's tags.

#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "musicbrainz/release_text.h"
#include "musicbrainz/tag_mapping.h"
#include "unit/tagger/tagger_test_support.h"
#include "xml/zr_exceptions.h"

namespace {

using strings = std::vector<std::string>;
using fields = std::vector<std::pair<std::string, strings>>;

TEST(musicbrainz_artist_text, splits_at_semicolons_skipping_the_blanks_after_them_and_joins_back) {
    const std::pair<const char*, strings> cases[] = {
        {"A;  B", {"A", "B"}},
        {"A; B; C", {"A", "B", "C"}},
        {"A ;B", {"A ", "B"}},  // only the blanks after a ";" go
        {"", {}},
        {"A;", {"A"}},
        {";A", {"A"}},
        {"A; ;B", {"A", "B"}},
        {"Simon & Garfunkel", {"Simon & Garfunkel"}},
        {"A;\tB", {"A", "B"}},
    };
    for (auto& [text, expected] : cases) EXPECT_EQ(split_artists(text), expected) << '"' << text << '"';
    // Joined with a semicolon and a blank, they read back the same.
    const strings artists = {"David Bowie", "Queen"};
    EXPECT_EQ(join_artists(artists), "David Bowie; Queen");
    EXPECT_EQ(split_artists(join_artists(artists)), artists);
    EXPECT_EQ(join_artists({}), "");
}

TEST(musicbrainz_disc_text, reads_number_and_total_and_refuses_anything_but_digits) {
    struct row {
        const char* text;
        std::uint32_t number, total;
    };
    const row good[] = {{"1/2", 1, 2}, {"2/2", 2, 2}, {"3", 3, 0}, {"", 0, 0}, {"/4", 0, 4}, {"01/002", 1, 2},
                        {"4294967295/4294967295", 4294967295u, 4294967295u}};
    for (const row& r : good) {
        musicbrainz_release release;
        read_disc_text(r.text, release);
        EXPECT_EQ(release.disc_number, r.number) << r.text;
        EXPECT_EQ(release.total_discs, r.total) << r.text;
    }
    musicbrainz_release release;
    release.disc_number = 1;
    release.total_discs = 2;
    EXPECT_EQ(disc_text(release), "1/2");

    // Anything but digits is refused and leaves the release as it was.
    const std::pair<const char*, const char*> bad[] = {
        {"1/x", "invalid input"}, {"a/2", "invalid input"}, {"1/2/3", "invalid input"}, {" 1/2", "invalid input"},
        {"-1/2", "invalid input"}, {"1 of 2", "invalid input"}, {"4294967296/1", "overflow"}, {"1/99999999999", "overflow"},
    };
    for (auto& [text, message] : bad) {
        release.disc_number = 7;
        release.total_discs = 9;
        try {
            read_disc_text(text, release);
            ADD_FAILURE() << text << " was accepted";
        } catch (const std::exception& e) {
            EXPECT_EQ(std::string(e.what()), message) << text;
        }
        EXPECT_EQ(release.disc_number, 7u) << text;
        EXPECT_EQ(release.total_discs, 9u) << text;
    }
}

musicbrainz_release two_track_release() {
    musicbrainz_release r;
    r.title = "Album";
    r.album_artist = {"Band", "Guest"};
    r.date = "1999-05-10";
    r.disc_number = 2;
    r.total_discs = 3;
    r.tracks = {{{"Singer"}, "First"}, {{}, "Second"}};
    return r;
}

using tagger_testing::fields_of;

TEST(musicbrainz_tag_mapping, writes_the_release_and_the_track_and_leaves_other_fields_alone) {
    tag_record tags;
    tags.set_field("title", "old title");
    tags.set_field("genre", "Rock");
    tags.set_field("comment", "keep me");
    apply_release_tags(tags, two_track_release(), 0);
    EXPECT_EQ(fields_of(tags), (fields{{"title", {"First"}},
                                       {"genre", {"Rock"}},
                                       {"comment", {"keep me"}},
                                       {"album artist", {"Band", "Guest"}},
                                       {"album", {"Album"}},
                                       {"date", {"1999-05-10"}},
                                       {"artist", {"Singer"}},
                                       {"totaldiscs", {"3"}},
                                       {"discnumber", {"2"}}}));
}

TEST(musicbrainz_tag_mapping, a_track_without_artists_gets_the_album_artists) {
    tag_record tags;
    apply_release_tags(tags, two_track_release(), 1);
    EXPECT_EQ(fields_of(tags)[3], (std::pair<std::string, strings>{"title", {"Second"}}));
    EXPECT_STREQ(tags.first_value("artist"), "Band");
    EXPECT_EQ(tags.value_count(tags.find_field("artist")), 2u);
}

TEST(musicbrainz_tag_mapping, empty_values_remove_their_fields) {
    musicbrainz_release r;
    r.tracks.resize(1);
    r.total_discs = 2;
    r.disc_number = 0;  // an unknown position is not written
    tag_record tags;
    for (const char* name : {"album artist", "album", "date", "title", "artist", "discnumber", "genre"}) tags.set_field(name, "x");
    apply_release_tags(tags, r, 0);
    EXPECT_EQ(fields_of(tags), (fields{{"discnumber", {"x"}}, {"genre", {"x"}}, {"totaldiscs", {"2"}}}));
}

TEST(musicbrainz_tag_mapping, disc_fields_only_for_releases_of_more_than_one_disc) {
    struct row {
        std::uint32_t number, total;
        const char* discnumber;   // null: as the file had it
        const char* totaldiscs;
    };
    const row rows[] = {
        {1, 1, "9", "9"},  // single disc: both stay as they were
        {1, 2, "1", "2"},
        {2, 2, "2", "2"},
        {0, 0, "9", "9"},  // nothing known: nothing written
        {3, 0, "3", "9"},
    };
    for (const row& r : rows) {
        musicbrainz_release release;
        release.tracks.resize(1);
        release.disc_number = r.number;
        release.total_discs = r.total;
        tag_record tags;
        tags.set_field("discnumber", "9");
        tags.set_field("totaldiscs", "9");
        apply_release_tags(tags, release, 0);
        EXPECT_STREQ(tags.first_value("discnumber"), r.discnumber) << r.number << "/" << r.total;
        EXPECT_STREQ(tags.first_value("totaldiscs"), r.totaldiscs) << r.number << "/" << r.total;
    }
}

} // namespace
