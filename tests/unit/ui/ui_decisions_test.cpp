// The in-place editor's decisions and the resize arithmetic, apart from any window: what a key
// does, where the word before the caret starts, how a paste fits one line, which Windows builds
// draw the dark theme, and where a control goes when its dialog grows.

#include <cstdint>
#include <string>

#include <gtest/gtest.h>

#include "ui/edit_keys.h"
#include "ui/resize_layout.h"

namespace {

// Virtual-key codes, spelled out: the decisions take the system's numbers.
constexpr unsigned key_backspace = 0x08, key_tab = 0x09, key_enter = 0x0D, key_escape = 0x1B, key_f2 = 0x71;

TEST(in_place_decisions, keys_and_their_meaning) {
    using in_place::key_action;
    in_place::modifiers none, ctrl{true, false, false}, shift{false, true, false}, ctrl_shift{true, true, false};
    struct {
        unsigned key;
        in_place::modifiers mods;
        std::uint32_t options;
        key_action action;
    } cases[] = {
        {key_enter, none, 0, key_action::end_accept},
        {key_enter, ctrl, in_place::multi_line, key_action::pass},
        {key_tab, none, 0, key_action::end_next},
        {key_tab, shift, 0, key_action::end_previous},
        {key_escape, none, 0, key_action::end_cancel},
        {'A', ctrl, 0, key_action::select_all},
        {'A', ctrl_shift, 0, key_action::pass},
        {'A', none, 0, key_action::pass},
        {key_backspace, ctrl, 0, key_action::delete_word},
        {key_backspace, ctrl, in_place::read_only, key_action::pass},
        {key_backspace, none, 0, key_action::pass},
        {key_f2, none, 0, key_action::pass},
    };
    for (auto& c : cases) EXPECT_EQ(in_place::action_for_key(c.key, c.mods, c.options), c.action) << "key " << c.key;
}

TEST(in_place_decisions, word_before_the_caret) {
    struct {
        std::u16string text;
        std::size_t caret, start;
    } cases[] = {
        {u"Train to Skaville", 17, 9}, {u"Train to ", 9, 6}, {u"Train", 5, 0}, {u"", 0, 0},
        {u"Rock / Pop", 10, 7},        {u"Rock / ", 7, 5},   {u"Don't stop", 5, 0}, {u"a  b", 2, 0},
    };
    for (auto& c : cases) EXPECT_EQ(in_place::word_start_before(c.text, c.caret), c.start) << c.caret;
}

TEST(in_place_decisions, pasted_lines_and_the_dark_theme_build) {
    EXPECT_EQ(in_place::single_line_paste(u"a\r\nb\nc\rd"), u"a b c d");
    EXPECT_EQ(in_place::single_line_paste(u"plain"), u"plain");
    EXPECT_FALSE(in_place::dark_theme_supported(10, 0, 17762));
    EXPECT_TRUE(in_place::dark_theme_supported(10, 0, 17763));
    EXPECT_TRUE(in_place::dark_theme_supported(10, 0, 22631));
    EXPECT_FALSE(in_place::dark_theme_supported(6, 3, 9600));
}

TEST(resize_layout, each_edge_follows_the_size_change_by_its_factor) {
    const layout_rect original{10, 20, 110, 220};
    struct row {
        anchor_factors f;
        int grow_x, grow_y;
        layout_rect expected;
    } rows[] = {
        {{1, 0, 0, 0, 0}, 100, 50, {10, 20, 110, 220}},          // pinned to the top left
        {{1, 0, 0, 1, 1}, 100, 50, {10, 20, 210, 270}},          // grows with the window
        {{1, 1, 1, 1, 1}, 100, 50, {110, 70, 210, 270}},         // moves with the bottom right
        {{1, 0.5, 0, 1, 0}, 100, 50, {60, 20, 210, 220}},        // right half of a split
        {{1, 0.5, 0, 1, 0}, -40, 0, {-10, 20, 70, 220}},         // shrinking moves it back
        {{1, 0.5, 0.75, 0.5, 0.75}, 3, 3, {12, 22, 112, 222}},   // halves round to nearest
    };
    for (const row& r : rows)
        EXPECT_EQ(anchored_rect(original, r.f, r.grow_x, r.grow_y), r.expected)
            << r.f.left << " " << r.f.top << " " << r.f.right << " " << r.f.bottom << " by " << r.grow_x << "," << r.grow_y;
}

TEST(resize_layout, controls_not_in_the_table_stay_put) {
    const std::vector<anchor_factors> table = {{1024, 0, 0, 1, 1}, {1016, 0.5, 0, 1, 0}};
    ASSERT_NE(find_anchor(table, 1016), nullptr);
    EXPECT_EQ(find_anchor(table, 1016)->left, 0.5);
    EXPECT_EQ(find_anchor(table, 1010), nullptr);
}

} // namespace
