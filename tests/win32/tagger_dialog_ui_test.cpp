// The "discora tagger" dialog where only real windows show it: clicks and keys reaching the cell
// editor, an edit left open while the focus moves, the frame and how the controls follow a resize.

#include <gtest/gtest.h>

#include "resources/resource.h"
#include "ui_support.h"

#include <commctrl.h>

using namespace ui_testing;

namespace {

const match ska{"Various / Ska Island", {"Rude Boy", "Train to Skaville", "Phoenix City", "Carry Go Bring Come"}, {}};
const match live{"The Band / Live at Home", {"One", "Two", "Three", "Four"}, {"", "encore", "", ""}};

struct tagger_window : ::testing::Test {
    ui_host ui;
    HWND dialog = nullptr, tracks = nullptr, matches = nullptr;
    void SetUp() override {
        dialog = open_tagger(ui.host(), make_lookup({ska, live}));
        ASSERT_TRUE(dialog);
        tracks = GetDlgItem(dialog, IDC_TAGGER_TRACKS);
        matches = GetDlgItem(dialog, IDC_TAGGER_MATCHES);
    }
    RECT place(int id) { return screen_rect(GetDlgItem(dialog, id)); }
};

} // namespace

TEST_F(tagger_window, a_title_left_open_when_another_match_is_clicked_stays_with_its_own_match) {
    click_cell(tracks, 1, 1);
    ui.host().pump();
    ASSERT_TRUE(cell_editor(tracks));
    SetWindowTextW(cell_editor(tracks), L"Train to Skaville (live)");
    // No Enter: the click on the other match takes the focus from the editor.
    click_cell(matches, 1, 0);
    ui.host().pump();
    ASSERT_EQ(selected_row(matches), 1);
    EXPECT_FALSE(cell_editor(tracks));
    EXPECT_EQ(cell(tracks, 1, 1), "Two") << "the edit went into the other match";
    click_cell(matches, 0, 0);
    ui.host().pump();
    EXPECT_EQ(cell(tracks, 1, 1), "Train to Skaville (live)") << "the edit was lost";
}

// (F2 alone, on a title, is part of the end-to-end road.)
TEST_F(tagger_window, shift_f2_and_clicks_open_the_editor_on_the_cell_they_name) {
    // Shift+F2 edits the focused row's comment.
    focus_row(tracks, 3);
    press_key(tracks, VK_F2, /*shift=*/true);
    ui.host().pump();
    ASSERT_TRUE(cell_editor(tracks)) << "Shift+F2 opened no editor";
    SetWindowTextW(cell_editor(tracks), L"dub");
    press_key(cell_editor(tracks), VK_RETURN);
    ui.host().pump();
    EXPECT_EQ(cell(tracks, 3, 2), "dub");
    EXPECT_EQ(cell(tracks, 3, 1), "Carry Go Bring Come");

    click_cell(tracks, 2, 0);
    ui.host().pump();
    EXPECT_FALSE(cell_editor(tracks)) << "a click on the number column opened an editor";
    click_cell(tracks, 2, 1);
    ui.host().pump();
    ASSERT_TRUE(cell_editor(tracks)) << "a click on a title opened no editor";
    EXPECT_EQ(text_of(cell_editor(tracks)), "Phoenix City");
}

TEST_F(tagger_window, widening_moves_the_right_half_by_half_and_widens_the_track_list) {
    const RECT window = screen_rect(dialog), disc = place(IDC_TAGGER_DISC_GROUP), list = place(IDC_TAGGER_TRACKS),
               match_list = place(IDC_TAGGER_MATCHES), close = place(IDC_TAGGER_CLOSE), year = place(IDC_TAGGER_YEAR),
               genre_label = place(IDC_TAGGER_GENRE_LABEL);
    SetWindowPos(dialog, nullptr, 0, 0, window.right - window.left + 100, window.bottom - window.top + 60,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    ui.host().pump();
    EXPECT_EQ(place(IDC_TAGGER_DISC_GROUP).left - disc.left, 50);
    EXPECT_EQ(place(IDC_TAGGER_DISC_GROUP).right - disc.right, 100);
    const RECT list_after = place(IDC_TAGGER_TRACKS);
    EXPECT_EQ((list_after.right - list_after.left) - (list.right - list.left), 100);
    EXPECT_EQ((list_after.bottom - list_after.top) - (list.bottom - list.top), 60);
    EXPECT_EQ(place(IDC_TAGGER_MATCHES).right - match_list.right, 50);
    EXPECT_EQ(place(IDC_TAGGER_MATCHES).bottom - match_list.bottom, 0);  // only the track list grows in height
    EXPECT_EQ(place(IDC_TAGGER_CLOSE).left - close.left, 100);
    EXPECT_EQ(place(IDC_TAGGER_CLOSE).top - close.top, 60);
    EXPECT_EQ(place(IDC_TAGGER_YEAR).right - year.right, 75);
    EXPECT_EQ(place(IDC_TAGGER_GENRE_LABEL).left - genre_label.left, 75);
}

TEST_F(tagger_window, has_a_modal_frame_a_size_grip_a_smallest_size_and_closes_by_its_title_bar) {
    EXPECT_TRUE(GetWindowLongPtrW(dialog, GWL_EXSTYLE) & WS_EX_DLGMODALFRAME);
    EXPECT_TRUE(GetWindowLongPtrW(dialog, GWL_STYLE) & WS_THICKFRAME);
    HWND grip = nullptr;
    for (HWND c = GetWindow(dialog, GW_CHILD); c; c = GetWindow(c, GW_HWNDNEXT)) {
        wchar_t name[16] = {};
        GetClassNameW(c, name, 16);
        if (std::wstring(name) == L"ScrollBar" && (GetWindowLongPtrW(c, GWL_STYLE) & SBS_SIZEGRIP)) grip = c;
    }
    ASSERT_TRUE(grip);
    RECT client;
    GetClientRect(dialog, &client);
    MapWindowPoints(dialog, nullptr, reinterpret_cast<POINT*>(&client), 2);
    EXPECT_EQ(screen_rect(grip).right, client.right);
    EXPECT_EQ(screen_rect(grip).bottom, client.bottom);

    // Asked as the system asks while the user drags the frame: never below 270 x 170 units.
    MINMAXINFO limits{};
    SendMessageW(dialog, WM_GETMINMAXINFO, 0, reinterpret_cast<LPARAM>(&limits));
    RECT units{0, 0, 270, 170};
    MapDialogRect(dialog, &units);
    EXPECT_GT(limits.ptMinTrackSize.x, units.right);
    EXPECT_GT(limits.ptMinTrackSize.y, units.bottom);
    const RECT whole = screen_rect(dialog);
    EXPECT_LT(limits.ptMinTrackSize.x, whole.right - whole.left);  // the template's own size is larger

    SendMessageW(dialog, WM_CLOSE, 0, 0);
    ui.host().pump();
    EXPECT_FALSE(IsWindow(dialog));
    EXPECT_TRUE(ui.host().open_windows().empty());
}
