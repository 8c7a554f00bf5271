// The preferences page and its server editor where only real windows show it: the page as a child
// of the host's preferences window, its fonts and dark mode, and the editor as a modal dialog
// owned by that window. While the editor is open the main thread waits in the component's modal
// loop, so a second thread (modal_hand) works the editor through sent messages, which that loop
// delivers.

#include <gtest/gtest.h>

#include <windows.h>

#include <commctrl.h>

#include <tunehall/core.h>
#include <tunehall/preferences_page.h>
#include <tunehall/shared.h>

#include "config/preferences_page.h"
#include "config/settings.h"
#include "dark_mode.h"
#include "preferences_frame.h"
#include "resources/resource.h"
#include "ui_support.h"

using namespace ui_testing;
using frame_ids = winhost::preferences_frame;

namespace {

constexpr const wchar_t* add_title = L"Add server [discora Tagger]";
constexpr const wchar_t* edit_title = L"Edit server [discora Tagger]";

struct preferences_window_test : ::testing::Test {
    ui_host ui;
    HWND frame = nullptr, page = nullptr, list = nullptr;
    DWORD ui_thread = GetCurrentThreadId();

    // Opens the host's preferences window on the component's page.
    void SetUp() override {
        for (auto& p : all_services<preferences_page>())
            if (std::string(p->get_name()) == preferences_page_name) host_service<preferences_window>()->show_page(p->get_guid());
        ui.host().pump();
        frame = FindWindowW(frame_ids::class_name, nullptr);
        ASSERT_TRUE(frame) << "no preferences window";
        page = FindWindowExW(frame, nullptr, L"#32770", nullptr);
        ASSERT_TRUE(page) << "no page inside the preferences window";
        list = GetDlgItem(page, IDC_PREFS_SERVERS);
    }
    void click(HWND window, int id) { SendMessageW(GetDlgItem(window, id), BM_CLICK, 0, 0); }
    bool apply_enabled() { return IsWindowEnabled(GetDlgItem(frame, frame_ids::apply_id)) != FALSE; }
    // The editor with `title`, as the second hand waits for it.
    std::function<HWND()> editor(const wchar_t* title) {
        return [this, title] { return find_thread_window(ui_thread, title, frame); };
    }
};

} // namespace

TEST_F(preferences_window_test, the_page_sits_in_the_window_with_bold_captions_dark_mode_and_apply_lit_by_typing) {
    EXPECT_EQ(GetWindowLongPtrW(page, GWL_STYLE) & WS_CHILD, WS_CHILD);
    EXPECT_EQ(GetParent(page), frame);
    for (int id : {IDC_PREFS_USER_CAPTION, IDC_PREFS_SERVER_CAPTION}) {
        auto font = reinterpret_cast<HFONT>(SendMessageW(GetDlgItem(page, id), WM_GETFONT, 0, 0));
        ASSERT_TRUE(font) << id;
        LOGFONTW face{};
        GetObjectW(font, sizeof face, &face);
        EXPECT_GE(face.lfWeight, FW_BOLD) << id;
    }
    EXPECT_EQ(ui.host().dark().attached(), std::vector<HWND>{page});
    EXPECT_FALSE(apply_enabled());
    SetDlgItemTextW(page, IDC_PREFS_EMAIL, L"me@example.invalid");
    EXPECT_TRUE(apply_enabled());
    click(frame, frame_ids::apply_id);
    EXPECT_EQ(cfg_email.get(), "me@example.invalid");
    EXPECT_FALSE(apply_enabled());
    click(frame, frame_ids::cancel_id);
    ui.host().pump();
    EXPECT_TRUE(ui.host().dark().attached().empty()) << "the closed page is still in the dark mode's list";
}

TEST_F(preferences_window_test, the_editor_is_modal_a_second_one_is_refused_and_cancel_changes_nothing) {
    const unsigned pokes_before = ModalDialog_PokeCount();
    HWND first = nullptr, current_meanwhile = nullptr;
    bool owner_was_enabled = true;
    LONG_PTR port_style = 0;
    int editors_meanwhile = 0;
    modal_hand hand(editor(add_title), [&](HWND dialog) {
        if (!dialog) return;
        first = dialog;
        owner_was_enabled = IsWindowEnabled(frame) != FALSE;
        port_style = GetWindowLongPtrW(GetDlgItem(dialog, IDC_EDITOR_PORT), GWL_STYLE);
        SetDlgItemTextW(dialog, IDC_EDITOR_SERVER, L"thrown.invalid");
        // The user reaches the page's buttons again (the host's keyboard, another window): the
        // page asks the host's registry first.
        for (int id : {IDC_PREFS_ADD, IDC_PREFS_EDIT, IDC_PREFS_RETRIEVE})
            SendMessageW(page, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), reinterpret_cast<LPARAM>(GetDlgItem(page, id)));
        current_meanwhile = ModalDialog_Current();
        find_thread_window(ui_thread, [&](HWND w) {  // counts every editor, finds none
            wchar_t text[128] = {};
            GetWindowTextW(w, text, 128);
            editors_meanwhile += IsWindowVisible(w) && (std::wstring(text) == add_title || std::wstring(text) == edit_title);
            return false;
        });
        click(dialog, IDCANCEL);
    });
    click(page, IDC_PREFS_ADD);
    ASSERT_TRUE(hand.join()) << "no server editor titled \"Add server [discora Tagger]\"";
    EXPECT_FALSE(owner_was_enabled);
    EXPECT_EQ(port_style & ES_NUMBER, ES_NUMBER) << "the port field takes more than digits";
    EXPECT_EQ(editors_meanwhile, 1);
    EXPECT_EQ(current_meanwhile, first);
    EXPECT_EQ(ModalDialog_PokeCount() - pokes_before, 3u);
    EXPECT_TRUE(IsWindowEnabled(frame));
    EXPECT_EQ(ModalDialog_Current(), nullptr);
    EXPECT_EQ(row_count(list), 1);
    EXPECT_FALSE(apply_enabled());
}

TEST_F(preferences_window_test, a_double_click_on_a_row_edits_that_row) {
    std::string server;
    modal_hand hand(editor(edit_title), [&](HWND dialog) {
        if (!dialog) return;
        server = text_of(GetDlgItem(dialog, IDC_EDITOR_SERVER));
        SetDlgItemTextW(dialog, IDC_EDITOR_DESCRIPTION, L"edited");
        click(dialog, IDOK);
    });
    double_click_cell(list, 0, 0);
    ui.host().pump_until([&] { return cell(list, 0, 1) == "edited"; }, std::chrono::seconds(20));
    ASSERT_TRUE(hand.join()) << "a double click opened no editor";
    EXPECT_EQ(server, cell(list, 0, 0));
    EXPECT_EQ(cell(list, 0, 1), "edited");
}
