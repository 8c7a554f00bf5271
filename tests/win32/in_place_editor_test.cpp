// The in-place cell editor on a real list view: how keys end it (once), what a multi-line editor
// does with Ctrl+Enter, the word delete, pasting into one line, its styles and where it lies.

#include <gtest/gtest.h>

#include <cstring>

#include "resources/resource.h"
#include "ui/view_factory.h"
#include "ui/edit_keys.h"
#include "ui/win32/in_place_editor.h"
#include "ui_support.h"

#include <commctrl.h>

using namespace ui_testing;

namespace {

// Records what the view reports, and nothing else: the editor's ends arrive here unprocessed.
struct recorder : dialog_events {
    struct end {
        std::size_t row;
        int column;
        std::string text;
        int code;
        bool operator==(const end&) const = default;
        friend std::ostream& operator<<(std::ostream& out, const end& e) {
            return out << "row " << e.row << " column " << e.column << " \"" << e.text << "\" code " << e.code;
        }
    };
    std::vector<end> ends;       // the texts handed over as editors ended
    std::vector<int> later_ends;  // the ends told once the editors were gone
    void on_command(int) override {}
    void on_cell_edit_commit(int, std::size_t row, int column, const std::string& text, int code) override {
        ends.push_back({row, column, text, code});
    }
    void on_cell_edit_end(int, std::size_t, int, int code) override { later_ends.push_back(code); }
};

constexpr int tracks = IDC_TAGGER_TRACKS;

struct editor_on_a_list : ::testing::Test {
    ui_host ui;
    recorder events;
    std::unique_ptr<dialog_view> view = create_dialog_view(IDD_TAGGER, nullptr, events);
    HWND list = GetDlgItem(view->handle(), tracks);

    void SetUp() override {
        view->list_add_column(tracks, "#", 25, dialog_view::align::right);
        view->list_add_column(tracks, "Title", 250, dialog_view::align::left);
        view->list_add_column(tracks, "Comment", 250, dialog_view::align::left);
        for (int i = 0; i < 3; ++i) {
            std::size_t row = view->list_add_row(tracks, std::to_string(i + 1));
            view->list_set_cell(tracks, row, 1, "Title " + std::to_string(i + 1));
            view->list_set_cell(tracks, row, 2, "Comment " + std::to_string(i + 1));
        }
        view->show();
    }
    void TearDown() override {
        view.reset();
        ui.host().pump();
    }
    // Opens the editor on a cell; returns its text control.
    HWND edit(std::size_t row, int column) {
        view->list_start_edit(tracks, row, column);
        return cell_editor(list);
    }
};

} // namespace

TEST_F(editor_on_a_list, two_tabs_in_quick_succession_end_the_editor_once) {
    HWND editor = edit(1, 1);
    ASSERT_TRUE(editor);
    // Both keys arrive before the first end is handled.
    press_key(editor, VK_TAB);
    press_key(editor, VK_TAB);
    ui.host().pump();
    EXPECT_EQ(events.ends, (std::vector<recorder::end>{{1, 1, "Title 2", in_place::next_cell}}));
    EXPECT_EQ(events.later_ends, std::vector<int>{in_place::next_cell});
    EXPECT_FALSE(cell_editor(list)) << "the ended editor is still there";
}

TEST_F(editor_on_a_list, keys_end_it_with_their_codes_and_the_text_it_held) {
    struct {
        UINT key;
        bool shift;
        int code;
    } cases[] = {{VK_RETURN, false, in_place::accepted}, {VK_TAB, false, in_place::next_cell},
                 {VK_TAB, true, in_place::previous_cell}, {VK_ESCAPE, false, in_place::cancelled}};
    for (auto& c : cases) {
        events.ends.clear();
        HWND editor = edit(0, 1);
        ASSERT_TRUE(editor);
        SetWindowTextW(editor, L"typed");
        press_key(editor, c.key, c.shift);
        ui.host().pump();
        EXPECT_EQ(events.ends, (std::vector<recorder::end>{{0, 1, "typed", c.code}})) << "key " << c.key;
    }
}

TEST_F(editor_on_a_list, ctrl_enter_in_a_multi_line_editor_breaks_the_line_and_keeps_editing) {
    HWND editor = edit(2, 2);  // comments are edited on several lines
    ASSERT_TRUE(editor);
    EXPECT_TRUE(GetWindowLongPtrW(editor, GWL_STYLE) & ES_MULTILINE);
    SendMessageW(editor, EM_SETSEL, 7, 7);  // after "Comment"
    press_key(editor, VK_RETURN, false, /*control=*/true);
    SendMessageW(editor, WM_CHAR, L'\n', 1);  // what the keyboard makes of Ctrl+Enter
    ui.host().pump();
    EXPECT_TRUE(events.ends.empty());
    EXPECT_EQ(text_of(editor), "Comment\r\n 3");
    press_key(editor, VK_RETURN);
    ui.host().pump();
    EXPECT_EQ(events.ends, (std::vector<recorder::end>{{2, 2, "Comment\r\n 3", in_place::accepted}}));
}

TEST_F(editor_on_a_list, ctrl_backspace_deletes_a_word_ctrl_a_selects_all_and_pasted_lines_join_with_blanks) {
    HWND editor = edit(0, 1);
    ASSERT_TRUE(editor);
    SetWindowTextW(editor, L"Train to Skaville");
    SendMessageW(editor, EM_SETSEL, 17, 17);
    press_key(editor, VK_BACK, false, true);
    EXPECT_EQ(text_of(editor), "Train to ");
    press_key(editor, VK_BACK, false, true);
    EXPECT_EQ(text_of(editor), "Train ");
    press_key(editor, 'A', false, true);
    DWORD from = 1, to = 0;
    SendMessageW(editor, EM_GETSEL, reinterpret_cast<WPARAM>(&from), reinterpret_cast<LPARAM>(&to));
    EXPECT_EQ(from, 0u);
    EXPECT_EQ(to, 6u);
    EXPECT_TRUE(events.ends.empty());

    const std::wstring text = L"Rude\r\nBoy\nTrain";
    ASSERT_TRUE(OpenClipboard(editor));
    EmptyClipboard();
    HGLOBAL data = GlobalAlloc(GMEM_MOVEABLE, (text.size() + 1) * sizeof(wchar_t));
    std::memcpy(GlobalLock(data), text.c_str(), (text.size() + 1) * sizeof(wchar_t));
    GlobalUnlock(data);
    SetClipboardData(CF_UNICODETEXT, data);
    CloseClipboard();
    SetWindowTextW(editor, L"");
    SendMessageW(editor, WM_PASTE, 0, 0);
    EXPECT_EQ(text_of(editor), "Rude Boy Train");
}

TEST_F(editor_on_a_list, the_editor_lies_over_its_cell_inside_the_list_with_the_lists_font) {
    HWND editor = edit(1, 2);
    ASSERT_TRUE(editor);
    RECT cell_rect{LVIR_BOUNDS, 2, 0, 0};
    SendMessageW(list, LVM_GETSUBITEMRECT, 1, reinterpret_cast<LPARAM>(&cell_rect));
    RECT client;
    GetClientRect(list, &client);
    IntersectRect(&cell_rect, &cell_rect, &client);
    RECT container = screen_rect(GetParent(editor));
    MapWindowPoints(nullptr, list, reinterpret_cast<POINT*>(&container), 2);
    InflateRect(&cell_rect, 1, 1);  // one border's width around the visible part of the cell
    EXPECT_TRUE(EqualRect(&container, &cell_rect)) << container.left << "," << container.top << " " << container.right
                                                   << "," << container.bottom;
    EXPECT_EQ(SendMessageW(editor, WM_GETFONT, 0, 0), SendMessageW(list, WM_GETFONT, 0, 0));
    EXPECT_EQ(GetFocus(), editor);
}

TEST_F(editor_on_a_list, starting_another_cell_ends_the_open_editor_with_its_text_first) {
    SetWindowTextW(edit(0, 1), L"kept");
    HWND next = edit(2, 1);
    EXPECT_EQ(events.ends, (std::vector<recorder::end>{{0, 1, "kept", in_place::accepted}}));
    ASSERT_TRUE(next);
    EXPECT_EQ(text_of(next), "Title 3");
    ui.host().pump();
    EXPECT_EQ(events.later_ends.size(), 1u);  // the first editor's posted end died with it
}

namespace {
// A bare list view for editors made directly.
struct in_place_editor_styles : ::testing::Test {
    ui_host ui;
    HWND list = CreateWindowExW(0, WC_LISTVIEWW, L"", WS_POPUP | WS_VISIBLE | LVS_REPORT, 0, 0, 300, 200, nullptr, nullptr,
                                nullptr, nullptr);
    void TearDown() override { DestroyWindow(list); }
};
} // namespace

TEST_F(in_place_editor_styles, option_bits_choose_the_edit_controls_styles) {
    ASSERT_TRUE(list);
    struct {
        std::uint32_t options;
        LONG_PTR present, absent;
    } cases[] = {
        {0, ES_AUTOHSCROLL, ES_MULTILINE | ES_READONLY | ES_CENTER | ES_RIGHT},
        {in_place::read_only, ES_READONLY, ES_MULTILINE},
        {in_place::multi_line, ES_MULTILINE | WS_VSCROLL, ES_AUTOHSCROLL},
        {in_place::centred, ES_CENTER, ES_RIGHT},
        {in_place::right_aligned, ES_RIGHT, ES_CENTER},
        {in_place::centred | in_place::right_aligned, ES_CENTER, ES_RIGHT},
    };
    for (auto& c : cases) {
        in_place_editor editor(list, RECT{10, 10, 110, 30}, "x", c.options, [](const std::string&, int) {});
        LONG_PTR style = GetWindowLongPtrW(editor.control(), GWL_STYLE);
        EXPECT_EQ(style & c.present, c.present) << "options " << c.options;
        EXPECT_EQ(style & c.absent, 0) << "options " << c.options;
    }
    // Read-only: Ctrl+Backspace deletes nothing.
    in_place_editor editor(list, RECT{10, 10, 110, 30}, "two words", in_place::read_only, [](const std::string&, int) {});
    SendMessageW(editor.control(), EM_SETSEL, 9, 9);
    press_key(editor.control(), VK_BACK, false, true);
    EXPECT_EQ(text_of(editor.control()), "two words");
}

TEST_F(in_place_editor_styles, a_drop_down_list_has_the_choice_id_and_ends_with_the_chosen_item) {
    std::vector<std::pair<std::string, int>> ends;
    in_place_editor editor(list, RECT{10, 10, 110, 30}, std::vector<std::string>{"HTTP", "CDDBP"}, 1, 0,
                           [&](const std::string& text, int code) { ends.emplace_back(text, code); });
    EXPECT_EQ(GetDlgCtrlID(editor.control()), in_place_editor::choice_id);
    press_key(editor.control(), VK_RETURN);
    ui.host().pump();
    EXPECT_EQ(ends, (std::vector<std::pair<std::string, int>>{{"CDDBP", in_place::accepted}}));
}
