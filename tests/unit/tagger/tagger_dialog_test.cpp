// The "discora tagger" window as the user meets it: what it lists after a lookup, which match it
// shows first, in-place editing of the track list, the wipe box, "Settings..." and closing.

#include <gtest/gtest.h>

#include "config/preferences_page_guid.h"
#include "config/settings.h"
#include "tagger_test_support.h"

namespace tagger_testing {
namespace {

using edit_position = headless_view::edit_position;

bool same_cell(const std::optional<edit_position>& at, std::optional<std::pair<std::size_t, int>> expected) {
    if (!at || !expected) return !at && !expected;
    return at->list == tracks && at->row == expected->first && at->column == expected->second;
}

TEST_F(tagger_test, one_server_with_three_matches_lists_them_without_headers_and_shows_the_first) {
    match first = numbered_match("Band / First Album", 4, "rock");
    first.year = "1999";
    first.genre = "Rock";
    first.comments = {"", "", "live"};
    headless_view& view =
        open(make_lookup(4, {{"Server", {first, numbered_match("Other Band / Second", 4, "misc"), numbered_match("Solo", 4, "jazz")}}}));

    EXPECT_TRUE(view.shown());
    EXPECT_EQ(view.get_text(matches_group), "Matches (3)");
    EXPECT_FALSE(view.groups_enabled(matches));
    ASSERT_EQ(view.list_row_count(matches), 3u);
    const char* labels[] = {"Band / First Album (rock)", "Other Band / Second (misc)", "Solo / Solo (jazz)"};
    for (std::size_t r = 0; r < 3; ++r) {
        EXPECT_EQ(view.list_get_cell(matches, r, 0), labels[r]);
        EXPECT_EQ(view.row_group_header(matches, r), "");
    }
    EXPECT_EQ(view.list_selection(matches), 0u);
    EXPECT_EQ(view.get_text(artist), "Band");
    EXPECT_EQ(view.get_text(album), "First Album");
    EXPECT_EQ(view.get_text(year), "1999");
    EXPECT_EQ(view.get_text(genre), "Rock");
    EXPECT_EQ(column_texts(view, 0), (std::vector<std::string>{"1", "2", "3", "4"}));
    EXPECT_EQ(column_texts(view, title_column), (std::vector<std::string>{"Title 1", "Title 2", "Title 3", "Title 4"}));
    EXPECT_EQ(column_texts(view, comment_column), (std::vector<std::string>{"", "", "live", ""}));
    EXPECT_TRUE(view.is_enabled(update_files));
}

TEST_F(tagger_test, two_servers_the_first_empty_get_headers_and_the_second_servers_first_match) {
    headless_view& view = open(make_lookup(
        3, {{"Main server", {}}, {"Mirror", {numbered_match("Band / Album", 3), numbered_match("Band / Album (Remaster)", 3, "misc")}}}));

    EXPECT_EQ(view.get_text(matches_group), "Matches (2)");
    EXPECT_TRUE(view.groups_enabled(matches));
    ASSERT_EQ(view.list_row_count(matches), 3u);
    EXPECT_EQ(view.list_get_cell(matches, 0, 0), "No matches found");
    EXPECT_EQ(view.row_group_header(matches, 0), "Main server (0 matches)");
    EXPECT_EQ(view.list_get_cell(matches, 1, 0), "Band / Album (rock)");
    EXPECT_EQ(view.row_group_header(matches, 1), "Mirror (2 matches)");
    EXPECT_EQ(view.list_get_cell(matches, 2, 0), "Band / Album (Remaster) (misc)");
    EXPECT_EQ(view.row_group_header(matches, 2), "Mirror (2 matches)");

    EXPECT_EQ(view.list_selection(matches), 1u);
    EXPECT_EQ(view.get_text(album), "Album");
}

TEST_F(tagger_test, a_lookup_without_matches_leaves_update_files_disabled) {
    headless_view& view = open(make_lookup(3, {{"Server", {}}}));
    EXPECT_TRUE(view.shown());
    EXPECT_FALSE(view.is_enabled(update_files));
    EXPECT_EQ(view.get_text(matches_group), "&Matches");
    EXPECT_EQ(view.list_row_count(matches), 0u);
    EXPECT_EQ(column_texts(view, 0), (std::vector<std::string>{"1", "2", "3"}));
}

TEST_F(tagger_test, f2_edits_the_focused_rows_title_and_shift_f2_its_comment) {
    headless_view& view = open(make_lookup(6, {{"Server", {numbered_match("A / B", 6)}}}));

    // Clicking the number only focuses the row.
    view.click_cell(tracks, 4, 0);
    EXPECT_FALSE(view.editing());

    view.press_key(tracks, key_f2);
    EXPECT_TRUE(same_cell(view.editing(), std::pair<std::size_t, int>{4, title_column}));
    view.finish_edit("ignored", escape);

    view.press_key(tracks, key_f2, true);
    EXPECT_TRUE(same_cell(view.editing(), std::pair<std::size_t, int>{4, comment_column}));
    view.finish_edit("Bonus track", enter);
    EXPECT_EQ(view.list_get_cell(tracks, 4, comment_column), "Bonus track");
    EXPECT_EQ(view.list_get_cell(tracks, 4, title_column), "Title 5");
}

TEST_F(tagger_test, a_click_edits_title_and_comment_cells_only) {
    headless_view& view = open(make_lookup(2, {{"Server", {numbered_match("A / B", 2)}}}));
    const std::pair<int, bool> clicks[] = {{0, false}, {title_column, true}, {comment_column, true}};
    for (auto [column, edits] : clicks) {
        SCOPED_TRACE(column);
        view.click_cell(tracks, 1, column);
        EXPECT_TRUE(same_cell(view.editing(), edits ? std::optional(std::pair<std::size_t, int>{1, column}) : std::nullopt));
        if (view.editing()) view.finish_edit("", escape);
    }
}

// Rows 0..2, each "Title n" with an empty comment; the editor ends holding "new".
TEST_F(tagger_test, the_cell_editor_commits_and_moves_as_the_key_says) {
    using cell = std::optional<std::pair<std::size_t, int>>;
    using v = std::vector<std::string>;
    const struct {
        std::size_t row;
        int column;
        int end;
        v titles;    // the Title column afterwards
        v comments;  // the Comment column afterwards
        cell next;   // where the editor is open afterwards
    } cases[] = {
        {1, title_column, escape, {"Title 1", "Title 2", "Title 3"}, {"", "", ""}, std::nullopt},
        {1, title_column, enter, {"Title 1", "new", "Title 3"}, {"", "", ""}, std::nullopt},
        {0, title_column, tab, {"new", "Title 2", "Title 3"}, {"", "", ""}, cell{{0, comment_column}}},
        {0, comment_column, tab, {"Title 1", "Title 2", "Title 3"}, {"new", "", ""}, cell{{1, title_column}}},
        {2, comment_column, tab, {"Title 1", "Title 2", "Title 3"}, {"", "", "new"}, std::nullopt},
        {1, comment_column, shift_tab, {"Title 1", "Title 2", "Title 3"}, {"", "new", ""}, cell{{1, title_column}}},
        {1, title_column, shift_tab, {"Title 1", "new", "Title 3"}, {"", "", ""}, cell{{0, comment_column}}},
        {0, title_column, shift_tab, {"new", "Title 2", "Title 3"}, {"", "", ""}, std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "row " << c.row << " column " << c.column << " end " << c.end);
        headless_view& view = open(make_lookup(3, {{"Server", {numbered_match("A / B", 3)}}}));
        view.click_cell(tracks, c.row, c.column);
        view.finish_edit("new", c.end);
        EXPECT_EQ(column_texts(view, title_column), c.titles);
        EXPECT_EQ(column_texts(view, comment_column), c.comments);
        EXPECT_TRUE(same_cell(view.editing(), c.next));
        if (view.editing()) view.finish_edit("", escape);
        view.close();
    }
}

TEST_F(tagger_test, tab_walks_every_editable_cell_in_reading_order) {
    headless_view& view = open(make_lookup(2, {{"Server", {numbered_match("A / B", 2)}}}));
    view.click_cell(tracks, 0, title_column);
    const char* typed[] = {"t1", "c1", "t2", "c2"};
    for (const char* text : typed) {
        ASSERT_TRUE(view.editing()) << "the editor closed before " << text;
        view.finish_edit(text, tab);
    }
    EXPECT_FALSE(view.editing());
    EXPECT_EQ(column_texts(view, 0), (std::vector<std::string>{"1", "2"}));
    EXPECT_EQ(column_texts(view, title_column), (std::vector<std::string>{"t1", "t2"}));
    EXPECT_EQ(column_texts(view, comment_column), (std::vector<std::string>{"c1", "c2"}));
}

TEST_F(tagger_test, the_wipe_box_shows_the_setting_and_the_next_dialog_remembers_a_click) {
    auto lookup = [] { return make_lookup(1, {{"Server", {numbered_match("A / B", 1)}}}); };
    headless_view& first = open(lookup());
    EXPECT_EQ(first.get_check(wipe_tags), 0);
    first.click(wipe_tags);
    first.close();

    headless_view& second = open(lookup());
    EXPECT_EQ(second.get_check(wipe_tags), 1);
    EXPECT_EQ(cfg_wipe_existing_tags.get(), 1);
    second.click(wipe_tags);
    second.close();

    EXPECT_EQ(open(lookup()).get_check(wipe_tags), 0);
}

TEST_F(tagger_test, settings_opens_the_components_preferences_page) {
    headless_view& view = open(make_lookup(1, {{"Server", {numbered_match("A / B", 1)}}}));
    view.click(settings);
    ASSERT_EQ(preferences->pages.size(), 1u);
    EXPECT_TRUE(tunehall::guid_equal(preferences->pages[0], preferences_page_guid));
    EXPECT_FALSE(view.destroyed());
}

// A host without a preferences window: the button is there, and pressing it harms nothing.
TEST(tagger_without_preferences_window, settings_leaves_the_dialog_open_and_quiet) {
    testing_support::test_host host;
    auto windows = make_service<hostkit::window_list>();
    host.add_service(modeless_window_manager::class_guid, windows);
    all_services<tagger_dialog_factory>().front()->open(nullptr, make_lookup(1, {{"Server", {numbered_match("A / B", 1)}}}));
    ASSERT_EQ(windows->open().size(), 1u);
    headless_view* view = headless_view::from_handle(windows->open()[0].handle);
    ASSERT_NE(view, nullptr);

    view->click(settings);
    EXPECT_FALSE(view->destroyed());
    EXPECT_TRUE(view->messages().empty());
    EXPECT_TRUE(host.popups().empty());
    view->close();
    EXPECT_TRUE(windows->open().empty());
}

TEST_F(tagger_test, close_and_the_close_request_take_the_window_away) {
    for (bool by_button : {true, false}) {
        SCOPED_TRACE(by_button ? "&Close" : "close request");
        headless_view& view = open(make_lookup(1, {{"Server", {numbered_match("A / B", 1)}}}));
        HWND window = view.handle();
        if (by_button) view.click(close_button);
        else view.close();
        EXPECT_TRUE(closed(window));
        EXPECT_TRUE(updates->calls().empty());
    }
}

} // namespace
} // namespace tagger_testing
