// The chosen match in the tagger's controls: how DTITLE is split into artist and album, how the
// controls go back into the match, and how each match keeps its own edits while the user switches.

#include <gtest/gtest.h>

#include "tagger/editing_model.h"
#include "tagger_test_support.h"

namespace tagger_testing {
namespace {

using texts = std::vector<std::string>;

TEST(split_artist_title, splits_at_the_first_separator_only) {
    // A slash without blanks on both sides is part of the name.
    const struct {
        const char *text;
        bool splits;
        const char *first, *second;
    } cases[] = {
        {"Artist X / Song / Live", true, "Artist X", "Song / Live"}, {"Band / Song", true, "Band", "Song"},
        {" / ", true, "", ""}, {"Band / ", true, "Band", ""}, {"AC/DC", false, "untouched", "untouched"},
        {"Band /Song", false, "untouched", "untouched"}, {"Intro", false, "untouched", "untouched"},
        {"", false, "untouched", "untouched"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        std::string first = "untouched", second = "untouched";
        EXPECT_EQ(split_artist_title(c.text, first, second), c.splits);
        EXPECT_EQ(first, c.first);
        EXPECT_EQ(second, c.second);
    }
}

TEST_F(tagger_test, the_disc_title_shows_as_artist_and_album_and_is_stored_back_joined) {
    const struct {
        const char* dtitle;
        const char* artist_shown;
        const char* album_shown;
        const char* stored_back;  // DTITLE after the user switched away without editing
    } cases[] = {{"Various / Best Of / Vol. 2", "Various", "Best Of / Vol. 2", "Various / Best Of / Vol. 2"},
                 {"Greatest Hits", "Greatest Hits", "Greatest Hits", "Greatest Hits / Greatest Hits"},
                 {"", "", "", " / "}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.dtitle);
        auto state = make_lookup(2, {{"Server", {numbered_match(c.dtitle, 2), numbered_match("Other / Disc", 2)}}});
        headless_view& view = open(state);
        EXPECT_EQ(view.get_text(artist), c.artist_shown);
        EXPECT_EQ(view.get_text(album), c.album_shown);
        view.select_row(matches, 1);
        view.select_row(matches, 0);
        EXPECT_STREQ(state->results[0].records[0].get_field(disc_record::dtitle), c.stored_back);
        EXPECT_EQ(view.get_text(artist), c.artist_shown);
        EXPECT_EQ(view.get_text(album), c.album_shown);
        view.close();
    }
}

TEST_F(tagger_test, each_match_keeps_its_own_edits_when_the_user_switches) {
    match a = numbered_match("Artist A / Album A", 3);
    a.year = "1990";
    match b = numbered_match("Artist B / Album B", 3);
    b.genre = "Jazz";
    b.comments = {"", "bonus"};
    headless_view& view = open(make_lookup(3, {{"Server", {a, b}}}));

    view.type_text(artist, "Edited A");
    view.type_text(year, "2001");
    view.type_text(genre, "Ska");
    view.click(various_artists);
    view.click_cell(tracks, 1, title_column);
    view.type_in_editor("Renamed");  // no Enter: choosing the other match ends the editor

    view.select_row(matches, 1);
    EXPECT_EQ(view.get_text(artist), "Artist B");
    EXPECT_EQ(view.get_text(album), "Album B");
    EXPECT_EQ(view.get_text(year), "");
    EXPECT_EQ(view.get_text(genre), "Jazz");
    EXPECT_EQ(view.get_check(various_artists), 0);
    EXPECT_EQ(column_texts(view, title_column), (texts{"Title 1", "Title 2", "Title 3"}));
    EXPECT_EQ(column_texts(view, comment_column), (texts{"", "bonus", ""}));

    view.select_row(matches, 0);
    EXPECT_EQ(view.get_text(artist), "Edited A");
    EXPECT_EQ(view.get_text(album), "Album A");
    EXPECT_EQ(view.get_text(year), "2001");
    EXPECT_EQ(view.get_text(genre), "Ska");
    EXPECT_EQ(view.get_check(various_artists), 1);
    EXPECT_EQ(column_texts(view, title_column), (texts{"Title 1", "Renamed", "Title 3"}));
    EXPECT_EQ(column_texts(view, comment_column), (texts{"", "", ""}));
}

TEST_F(tagger_test, selecting_the_no_matches_row_changes_nothing) {
    auto state = make_lookup(2, {{"Empty server", {}}, {"Full server", {numbered_match("Band / Record", 2)}}});
    headless_view& view = open(state);
    view.type_text(artist, "Typed");
    view.click_cell(tracks, 0, title_column);
    view.finish_edit("Changed", enter);

    view.select_row(matches, 0);
    ASSERT_EQ(view.list_get_cell(matches, 0, 0), "No matches found");
    EXPECT_EQ(view.get_text(artist), "Typed");
    EXPECT_EQ(view.get_text(album), "Record");
    EXPECT_EQ(column_texts(view, title_column), (texts{"Changed", "Title 2"}));

    // The match shown before is still the one that gets written.
    view.click(update_files);
    ASSERT_EQ(updates->calls().size(), 1u);
    EXPECT_STREQ(updates->tags_of(state->tracks[0]).first_value("artist"), "Typed");
    EXPECT_STREQ(updates->tags_of(state->tracks[0]).first_value("title"), "Changed");
}

TEST_F(tagger_test, rows_beyond_a_shorter_match_keep_their_text) {
    match five = numbered_match("Long / Five", 5);
    five.titles = {"Long 1", "Long 2", "Long 3", "Long 4", "Long 5"};
    auto state = make_lookup(5, {{"Server", {five, numbered_match("Short / Three", 3)}}});
    headless_view& view = open(state);

    view.select_row(matches, 1);
    EXPECT_EQ(column_texts(view, title_column), (texts{"Title 1", "Title 2", "Title 3", "Long 4", "Long 5"}));

    // An edit on a surplus row belongs to no track of the shorter match.
    view.click_cell(tracks, 4, title_column);
    view.finish_edit("Typed on row five", enter);
    view.select_row(matches, 0);
    EXPECT_EQ(column_texts(view, title_column), (texts{"Long 1", "Long 2", "Long 3", "Long 4", "Long 5"}));
    EXPECT_EQ(state->results[0].records[1].get_track_count(), 3u);
}

TEST_F(tagger_test, a_match_longer_than_the_track_list_fills_only_the_rows_there_are) {
    auto state = make_lookup(3, {{"Server", {numbered_match("Band / Deluxe", 4)}}});
    headless_view& view = open(state);
    EXPECT_EQ(column_texts(view, title_column), (texts{"Title 1", "Title 2", "Title 3"}));

    view.type_text(album, "Deluxe Edition");
    view.click(update_files);  // refused (another track count), yet the edit is kept in the match
    EXPECT_STREQ(state->results[0].records[0].get_track_field(3, disc_record::ttitle), "Title 4");
    EXPECT_STREQ(state->results[0].records[0].get_field(disc_record::dtitle), "Band / Deluxe Edition");
}

} // namespace
} // namespace tagger_testing
