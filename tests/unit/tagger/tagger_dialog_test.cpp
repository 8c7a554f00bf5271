// The "discora tagger" window as the user meets it: what it lists after a lookup, which match it
// shows first, in-place editing of the track list, the wipe box, "Settings..." and closing.

#include <gtest/gtest.h>

#include "config/preferences_page_guid.h"
#include "config/settings.h"
#include "tagger_test_support.h"

namespace tagger_testing {
namespace {

using cell = std::optional<std::pair<std::size_t, int>>;
using texts = std::vector<std::string>;

// Where the track list's in-place editor is open.
cell editing_cell(const headless_view& view) {
    auto at = view.editing();
    if (!at) return std::nullopt;
    EXPECT_EQ(at->list, tracks);
    return std::pair{at->row, at->column};
}

TEST_F(tagger_test, the_match_list_shows_each_servers_matches_and_the_first_match_found) {
    match first = numbered_match("Band / First Album", 4, "rock");
    first.year = "1999";
    first.genre = "Rock";
    first.comments = {"", "", "live"};
    const struct {
        std::vector<std::pair<std::string, std::vector<match>>> servers;
        const char* group;
        bool headers;
        texts labels, header_texts;
        std::optional<std::size_t> selected;
    } cases[] = {
        {{{"Server", {first, numbered_match("Other Band / Second", 4, "misc"), numbered_match("Solo", 4, "jazz")}}},
         "Matches (3)", false, {"Band / First Album (rock)", "Other Band / Second (misc)", "Solo / Solo (jazz)"},
         {"", "", ""}, 0},
        // Headers once there are two servers; the first match found is shown even if not in the first row.
        {{{"Main server", {}}, {"Mirror", {first, numbered_match("Band / Album (Remaster)", 4, "misc")}}},
         "Matches (2)", true, {"No matches found", "Band / First Album (rock)", "Band / Album (Remaster) (misc)"},
         {"Main server (0 matches)", "Mirror (2 matches)", "Mirror (2 matches)"}, 1},
        {{{"Server", {}}}, "&Matches", false, {}, {}, std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.group);
        headless_view& view = open(make_lookup(4, c.servers));
        EXPECT_TRUE(view.shown());
        EXPECT_EQ(view.get_text(matches_group), c.group);
        EXPECT_EQ(view.groups_enabled(matches), c.headers);
        texts labels, headers;
        for (std::size_t r = 0; r < view.list_row_count(matches); ++r) {
            labels.push_back(view.list_get_cell(matches, r, 0));
            headers.push_back(view.row_group_header(matches, r));
        }
        EXPECT_EQ(labels, c.labels);
        EXPECT_EQ(headers, c.header_texts);
        EXPECT_EQ(view.list_selection(matches), c.selected);
        EXPECT_EQ(view.is_enabled(update_files), c.selected.has_value());
        EXPECT_EQ(column_texts(view, 0), (texts{"1", "2", "3", "4"}));
        if (c.selected) {
            EXPECT_EQ(view.get_text(artist), "Band");
            EXPECT_EQ(view.get_text(album), "First Album");
            EXPECT_EQ(view.get_text(year), "1999");
            EXPECT_EQ(view.get_text(genre), "Rock");
            EXPECT_EQ(column_texts(view, title_column), (texts{"Title 1", "Title 2", "Title 3", "Title 4"}));
            EXPECT_EQ(column_texts(view, comment_column), (texts{"", "", "live", ""}));
        }
        view.close();
    }
}

TEST_F(tagger_test, f2_edits_the_focused_rows_title_and_shift_f2_its_comment) {
    headless_view& view = open(make_lookup(6, {{"Server", {numbered_match("A / B", 6)}}}));

    // Clicking the number only focuses the row.
    view.click_cell(tracks, 4, 0);
    EXPECT_FALSE(view.editing());

    view.press_key(tracks, key_f2);
    EXPECT_EQ(editing_cell(view), (cell{{4, title_column}}));
    view.finish_edit("ignored", escape);

    view.press_key(tracks, key_f2, true);
    EXPECT_EQ(editing_cell(view), (cell{{4, comment_column}}));
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
        EXPECT_EQ(editing_cell(view), (edits ? cell{{1, column}} : std::nullopt));
        if (view.editing()) view.finish_edit("", escape);
    }
}

// Rows 0..2, each "Title n" with an empty comment; the editor ends holding "new".
TEST_F(tagger_test, the_cell_editor_commits_and_moves_as_the_key_says) {
    using v = texts;
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
        EXPECT_EQ(editing_cell(view), c.next);
        if (view.editing()) view.finish_edit("", escape);
        view.close();
    }
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
    headless_view& view = *headless_view::from_handle(windows->open()[0].handle);
    view.click(settings);
    EXPECT_FALSE(view.destroyed());
    EXPECT_TRUE(view.messages().empty());
    EXPECT_TRUE(host.popups().empty());
    view.close();  // the close request, as the user's window frame sends it
    EXPECT_TRUE(windows->open().empty());
}

// The close request is checked above and with a pending update (tag_writing_test).
TEST_F(tagger_test, the_close_button_takes_the_window_away) {
    headless_view& view = open(make_lookup(1, {{"Server", {numbered_match("A / B", 1)}}}));
    HWND window = view.handle();
    view.click(close_button);
    EXPECT_TRUE(closed(window));
    EXPECT_TRUE(updates->calls().empty());
}

} // namespace
} // namespace tagger_testing
