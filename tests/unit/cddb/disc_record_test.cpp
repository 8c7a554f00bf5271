// The disc record: its starting values, its track list, what a copy keeps, and unescaping.

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "cddb/disc_record.h"

namespace {

const char* const filled_texts[] = {"rock", "1502d003", "Artist / Album", "1999", "Rock", "notes", "ripper 1.0"};

disc_record filled_record() {
    disc_record r;
    for (unsigned i = 0; i < disc_record::field_count; ++i) r.set_field(i, filled_texts[i]);
    r.set_track_count(2);
    r.set_track_field(0, disc_record::ttitle, "One");
    r.set_track_field(0, disc_record::extt, "first");
    r.set_track_field(1, disc_record::ttitle, "Two");
    r.set_track_offset(0, 150);
    r.set_track_offset(1, 13650);
    r.set_disc_length(722);
    r.set_revision(7);
    r.set_various_artists(true);
    return r;
}

TEST(disc_record, starts_empty_with_unknown_length_and_revision_zero) {
    disc_record r;
    EXPECT_EQ(r.get_disc_length(), 0xFFFFFFFFu);
    EXPECT_EQ(r.get_revision(), 0u);
    EXPECT_FALSE(r.get_various_artists());
    EXPECT_EQ(r.get_track_count(), 0u);
    for (unsigned i = 0; i < disc_record::field_count; ++i) EXPECT_STREQ(r.get_field(i), "") << i;
}

TEST(disc_record, track_count_grows_with_empty_tracks_and_shrinks_from_the_end) {
    disc_record r = filled_record();
    r.set_track_count(4);
    ASSERT_EQ(r.get_track_count(), 4u);
    EXPECT_STREQ(r.get_track_field(1, disc_record::ttitle), "Two");
    EXPECT_EQ(r.get_track_offset(1), 13650u);
    for (std::size_t t : {2u, 3u}) {
        EXPECT_EQ(r.get_track_offset(t), 0xFFFFFFFFu);
        EXPECT_STREQ(r.get_track_field(t, disc_record::ttitle), "");
        EXPECT_STREQ(r.get_track_field(t, disc_record::extt), "");
    }
    r.set_track_count(4);
    EXPECT_EQ(r.get_track_count(), 4u);
    r.set_track_count(1);
    ASSERT_EQ(r.get_track_count(), 1u);
    EXPECT_STREQ(r.get_track_field(0, disc_record::ttitle), "One");
    // A track dropped and grown again comes back empty.
    r.set_track_count(2);
    EXPECT_STREQ(r.get_track_field(1, disc_record::ttitle), "");
    EXPECT_EQ(r.get_track_offset(1), 0xFFFFFFFFu);
}

void expect_copy_of_filled(const disc_record& copy) {
    for (unsigned i = 0; i < disc_record::field_count; ++i) EXPECT_STREQ(copy.get_field(i), filled_texts[i]) << i;
    ASSERT_EQ(copy.get_track_count(), 2u);
    EXPECT_STREQ(copy.get_track_field(0, disc_record::ttitle), "One");
    EXPECT_STREQ(copy.get_track_field(0, disc_record::extt), "first");
    EXPECT_STREQ(copy.get_track_field(1, disc_record::ttitle), "Two");
    EXPECT_TRUE(copy.get_various_artists());
    // What describes the server's entry rather than the user's tags is left behind.
    EXPECT_EQ(copy.get_disc_length(), 0xFFFFFFFFu);
    EXPECT_EQ(copy.get_revision(), 0u);
    EXPECT_EQ(copy.get_track_offset(0), 0xFFFFFFFFu);
    EXPECT_EQ(copy.get_track_offset(1), 0xFFFFFFFFu);
}

TEST(disc_record, a_copy_keeps_texts_tracks_and_flag_but_not_length_revision_or_offsets) {
    disc_record original = filled_record();
    disc_record copy(original);
    expect_copy_of_filled(copy);

    disc_record assigned;
    assigned.set_revision(3);
    assigned.set_disc_length(10);
    assigned.set_track_count(5);
    assigned.set_track_offset(0, 42);
    assigned = original;
    expect_copy_of_filled(assigned);

    // The original is untouched.
    EXPECT_EQ(original.get_revision(), 7u);
    EXPECT_EQ(original.get_track_offset(1), 13650u);
}

TEST(disc_record, set_field_takes_the_length_or_stops_at_a_nul) {
    disc_record r;
    r.set_field(disc_record::dyear, "19995", 4);
    EXPECT_STREQ(r.get_field(disc_record::dyear), "1999");
    r.set_field(disc_record::dyear, std::string("20\0" "01", 5).c_str(), 5);
    EXPECT_STREQ(r.get_field(disc_record::dyear), "20");
    r.set_field(disc_record::dyear, "2002");
    EXPECT_STREQ(r.get_field(disc_record::dyear), "2002");
    r.set_track_count(1);
    r.set_track_field(0, disc_record::ttitle, "Title and more", 5);
    EXPECT_STREQ(r.get_track_field(0, disc_record::ttitle), "Title");
}

TEST(disc_record, appending_unescapes_and_an_unknown_escape_ends_the_value) {
    const struct {
        std::string value, expected;
    } cases[] = {
        {"no escapes here", "no escapes here"},
        {"line1\\nline2", "line1\nline2"},
        {"a\\tb", "a\tb"},
        {"C:\\\\music", "C:\\music"},
        {"a\\\\nb", "a\\nb"},
        {"\\n\\t\\\\\\n", "\n\t\\\n"},
        {"a\\xb", "a"},
        {"ab\\rc\\nd", "ab"},
        {"a\\Nb", "a"},
        {"abc\\", "abc"},
        {"\\", ""},
        {std::string("ab\0c\\nd", 7), "ab"},
        {"A\xC3\xAFi\\n\xE2\x99\xA5", "A\xC3\xAFi\n\xE2\x99\xA5"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.value));
        disc_record r;
        r.set_field(disc_record::extd, "[");
        r.append_field(disc_record::extd, c.value.data(), c.value.size(), true);
        EXPECT_EQ(std::string(r.get_field(disc_record::extd)), "[" + c.expected);
        r.set_track_count(1);
        r.append_track_field(0, disc_record::extt, c.value.data(), c.value.size(), true);
        EXPECT_EQ(std::string(r.get_track_field(0, disc_record::extt)), c.expected);
        std::string out;
        append_unescaped(out, c.value.data(), c.value.size());
        EXPECT_EQ(out, c.expected);
    }
}

TEST(disc_record, a_stopped_value_does_not_stop_the_next_append_and_plain_appends_copy_backslashes) {
    disc_record r;
    std::string first = "a\\xb", second = "c\\nd";
    r.append_field(disc_record::extd, first.data(), first.size(), true);
    r.append_field(disc_record::extd, second.data(), second.size(), true);
    EXPECT_STREQ(r.get_field(disc_record::extd), "ac\nd");
    r.append_field(disc_record::extd, first.data(), first.size(), false);
    r.append_field(disc_record::extd, "tail and more", 4, false);
    EXPECT_STREQ(r.get_field(disc_record::extd), "ac\nda\\xbtail");
}

} // namespace
