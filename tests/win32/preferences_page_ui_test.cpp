// The preferences page and its server editor as a person meets them under Windows: the page is a
// child of the host's preferences window, the editor a modal dialog owned by that window. While
// the editor is open the main thread waits in the component's modal loop, so a second thread
// (modal_hand) works the editor through sent messages, which that loop delivers.

#include <gtest/gtest.h>

#include <cstdlib>

#include <windows.h>

#include <commctrl.h>

#include <tunehall/core.h>
#include <tunehall/preferences_page.h>
#include <tunehall/shared.h>

#include "config/preferences_page.h"
#include "config/settings.h"
#include "dark_mode.h"
#include "preferences_frame.h"
#include "ui_support.h"

using namespace ui_testing;

namespace {

enum : int {
    email = 1001, servers = 1002, add_button = 1025, edit_button = 1026, remove_button = 1028, retrieve_button = 1030,
    user_caption = 1033, server_caption = 1034,
    protocol = 1029, server_field = 1026, port_field = 1027, address_field = 1028, description_field = 1030,
};
constexpr const wchar_t* add_title = L"Add server [discora Tagger]";
constexpr const wchar_t* edit_title = L"Edit server [discora Tagger]";

server_record record(const char* server, const char* port = "80", const char* address = "/~cddb/cddb.cgi",
                     const char* description = "") {
    server_record r;
    r.set_server(server);
    r.set_protocol("http");
    r.set_port(port);
    r.set_address(address);
    r.set_description(description);
    return r;
}

struct preferences_window_test : ::testing::Test {
    ui_host ui;
    HWND frame = nullptr, page = nullptr, list = nullptr;
    DWORD ui_thread = GetCurrentThreadId();

    // Opens the host's preferences window on the component's page.
    void open() {
        for (auto& p : all_services<preferences_page>())
            if (std::string(p->get_name()) == preferences_page_name) host_service<preferences_window>()->show_page(p->get_guid());
        ui.host().pump();
        frame = FindWindowW(winhost::preferences_frame::class_name, nullptr);
        ASSERT_TRUE(frame) << "no preferences window";
        page = FindWindowExW(frame, nullptr, L"#32770", nullptr);
        ASSERT_TRUE(page) << "no page inside the preferences window";
        list = GetDlgItem(page, servers);
    }
    void click(HWND window, int id) { SendMessageW(GetDlgItem(window, id), BM_CLICK, 0, 0); }
    bool apply_enabled() { return IsWindowEnabled(GetDlgItem(frame, winhost::preferences_frame::apply_id)) != FALSE; }
    // The editor with `title` as the second hand waits for it.
    std::function<HWND()> editor(const wchar_t* title) {
        return [this, title] { return find_thread_window(ui_thread, title, frame); };
    }
    std::vector<std::string> rows() {
        std::vector<std::string> out;
        for (int i = 0; i < row_count(list); ++i) out.push_back(cell(list, i, 0) + " | " + cell(list, i, 1));
        return out;
    }
};

std::vector<std::string> stored_servers() {
    std::vector<std::string> out;
    for (const server_record& r : load_server_list())
        out.push_back(std::string(r.get_server()) + ":" + r.get_port() + r.get_address() + " " + r.get_description());
    return out;
}

} // namespace

TEST_F(preferences_window_test, the_page_shows_the_template_the_default_server_and_measured_columns) {
    open();
    EXPECT_EQ(GetWindowLongPtrW(page, GWL_STYLE) & WS_CHILD, WS_CHILD);
    EXPECT_EQ(GetParent(page), frame);

    // Nothing stored: the built-in server, and the page is unchanged.
    EXPECT_EQ(rows(), (std::vector<std::string>{"cddb.tessellon.invalid | discora server"}));
    EXPECT_EQ(item_text(page, email), cfg_email.get());
    EXPECT_FALSE(apply_enabled());

    // Each column is as wide as the list draws its sample text, plus room for the padding.
    auto measured = [&](const wchar_t* sample) {
        return static_cast<int>(SendMessageW(list, LVM_GETSTRINGWIDTHW, 0, reinterpret_cast<LPARAM>(sample))) + 15;
    };
    EXPECT_EQ(SendMessageW(list, LVM_GETCOLUMNWIDTH, 0, 0), measured(L"cddb.tessellon.invalid"));
    EXPECT_EQ(SendMessageW(list, LVM_GETCOLUMNWIDTH, 1, 0), measured(L"Random discora server"));
    EXPECT_EQ(SendMessageW(list, LVM_GETEXTENDEDLISTVIEWSTYLE, 0, 0) & 0x10020, 0x10020);

    // The captions carry a bold font of their own.
    for (int id : {user_caption, server_caption}) {
        auto font = reinterpret_cast<HFONT>(SendMessageW(GetDlgItem(page, id), WM_GETFONT, 0, 0));
        ASSERT_TRUE(font) << id;
        LOGFONTW face{};
        GetObjectW(font, sizeof face, &face);
        EXPECT_GE(face.lfWeight, FW_BOLD) << id;
    }

    // Typing an address changes the page: Apply lights up and stores it.
    SetDlgItemTextW(page, email, L"me@example.invalid");
    EXPECT_TRUE(apply_enabled());
    click(frame, winhost::preferences_frame::apply_id);
    EXPECT_EQ(cfg_email.get(), "me@example.invalid");
    EXPECT_FALSE(apply_enabled());
}

TEST_F(preferences_window_test, the_page_follows_the_hosts_dark_mode_while_it_is_open) {
    open();
    EXPECT_EQ(ui.host().dark().attached(), std::vector<HWND>{page});
    click(frame, winhost::preferences_frame::cancel_id);
    ui.host().pump();
    EXPECT_TRUE(ui.host().dark().attached().empty());
}

TEST_F(preferences_window_test, add_then_cancel_changes_nothing_and_the_owner_waits_disabled_meanwhile) {
    open();
    bool owner_was_enabled = true, protocol_enabled = true;
    std::string protocol_text, server_text, port_text;
    modal_hand hand(editor(add_title), [&](HWND dialog) {
        if (!dialog) return;
        owner_was_enabled = IsWindowEnabled(frame) != FALSE;
        protocol_text = item_text(dialog, protocol);
        protocol_enabled = IsWindowEnabled(GetDlgItem(dialog, protocol)) != FALSE;
        server_text = item_text(dialog, server_field);
        port_text = item_text(dialog, port_field);
        click(dialog, IDCANCEL);
    });
    click(page, add_button);
    ASSERT_TRUE(hand.join()) << "no server editor titled \"Add server [discora Tagger]\"";
    EXPECT_FALSE(owner_was_enabled);
    EXPECT_EQ(protocol_text, "HTTP");
    EXPECT_FALSE(protocol_enabled);
    // A new server starts as a copy of the built-in one.
    EXPECT_EQ(server_text, "cddb.tessellon.invalid");
    EXPECT_EQ(port_text, "80");

    EXPECT_TRUE(IsWindowEnabled(frame));
    EXPECT_EQ(ModalDialog_Current(), nullptr);
    EXPECT_EQ(rows(), (std::vector<std::string>{"cddb.tessellon.invalid | discora server"}));
    EXPECT_FALSE(apply_enabled());
}

TEST_F(preferences_window_test, an_added_server_with_a_cleared_port_is_stored_with_port_0) {
    open();
    modal_hand hand(editor(add_title), [&](HWND dialog) {
        if (!dialog) return;
        // The port field takes digits only.
        EXPECT_EQ(GetWindowLongPtrW(GetDlgItem(dialog, port_field), GWL_STYLE) & ES_NUMBER, ES_NUMBER);
        SetDlgItemTextW(dialog, server_field, L"cddb.example.invalid");
        SetDlgItemTextW(dialog, port_field, L"");
        SetDlgItemTextW(dialog, description_field, L"Example");
        click(dialog, IDOK);
    });
    click(page, add_button);
    ASSERT_TRUE(hand.join());
    EXPECT_EQ(rows(), (std::vector<std::string>{"cddb.tessellon.invalid | discora server", "cddb.example.invalid | Example"}));
    EXPECT_EQ(selected_row(list), 1);
    EXPECT_TRUE(apply_enabled());
    EXPECT_EQ(stored_servers().size(), 1u) << "stored before Apply";
    click(frame, winhost::preferences_frame::apply_id);
    EXPECT_EQ(stored_servers(), (std::vector<std::string>{"cddb.tessellon.invalid:80/~cddb/cddb.cgi discora server",
                                                          "cddb.example.invalid:0/~cddb/cddb.cgi Example"}));
}

TEST_F(preferences_window_test, editing_a_row_by_double_click_and_by_the_button_writes_it_back) {
    save_server_list({record("a.invalid", "80", "/a", "A"), record("b.invalid", "8080", "/b", "B")});
    open();
    modal_hand by_click(editor(edit_title), [&](HWND dialog) {
        if (!dialog) return;
        EXPECT_EQ(item_text(dialog, server_field), "b.invalid");
        EXPECT_EQ(item_text(dialog, port_field), "8080");
        EXPECT_EQ(item_text(dialog, address_field), "/b");
        SetDlgItemTextW(dialog, description_field, L"B edited");
        click(dialog, IDOK);
    });
    select_row(list, 1);
    double_click_cell(list, 1, 0);
    ui.host().pump_until([&] { return cell(list, 1, 1) == "B edited"; }, std::chrono::seconds(20));
    ASSERT_TRUE(by_click.join()) << "a double click opened no editor";
    EXPECT_EQ(cell(list, 1, 1), "B edited");

    // The button, on another row; Cancel leaves it as it was.
    modal_hand by_button(editor(edit_title), [&](HWND dialog) {
        if (!dialog) return;
        SetDlgItemTextW(dialog, server_field, L"changed.invalid");
        click(dialog, IDCANCEL);
    });
    select_row(list, 0);
    click(page, edit_button);
    ASSERT_TRUE(by_button.join());
    EXPECT_EQ(rows(), (std::vector<std::string>{"a.invalid | A", "b.invalid | B edited"}));
}

TEST_F(preferences_window_test, removing_the_first_of_three_selects_the_last_and_removing_the_last_selects_nothing) {
    save_server_list({record("one.invalid"), record("two.invalid"), record("three.invalid")});
    open();
    ASSERT_EQ(row_count(list), 3);
    select_row(list, 0);
    click(page, remove_button);
    EXPECT_EQ(rows(), (std::vector<std::string>{"two.invalid | ", "three.invalid | "}));
    EXPECT_EQ(selected_row(list), 1);
    EXPECT_TRUE(apply_enabled());

    click(page, remove_button);  // the last row, now selected
    EXPECT_EQ(rows(), (std::vector<std::string>{"two.invalid | "}));
    EXPECT_EQ(selected_row(list), std::nullopt);

    click(page, remove_button);  // nothing selected: nothing happens
    EXPECT_EQ(row_count(list), 1);
    click(frame, winhost::preferences_frame::ok_id);
    EXPECT_EQ(stored_servers(), (std::vector<std::string>{"two.invalid:80/~cddb/cddb.cgi "}));
}

TEST_F(preferences_window_test, reset_without_apply_stores_nothing) {
    save_server_list({record("one.invalid"), record("two.invalid")});
    const std::string email_before = cfg_email.get();
    open();
    click(frame, winhost::preferences_frame::reset_id);
    EXPECT_EQ(rows(), (std::vector<std::string>{"cddb.tessellon.invalid | discora server"}));
    EXPECT_EQ(item_text(page, email), default_email);
    EXPECT_TRUE(apply_enabled());
    click(frame, winhost::preferences_frame::cancel_id);
    EXPECT_FALSE(IsWindow(frame));
    EXPECT_EQ(stored_servers(), (std::vector<std::string>{"one.invalid:80/~cddb/cddb.cgi ", "two.invalid:80/~cddb/cddb.cgi "}));
    EXPECT_EQ(cfg_email.get(), email_before);
}

TEST_F(preferences_window_test, a_second_editor_is_refused_while_one_is_open_and_the_open_one_is_brought_forward) {
    open();
    const unsigned pokes_before = ModalDialog_PokeCount();
    HWND first = nullptr, current_meanwhile = nullptr;
    int editors_meanwhile = 0;
    modal_hand hand(editor(add_title), [&](HWND dialog) {
        if (!dialog) return;
        first = dialog;
        // The user reaches the page's buttons again (the host's keyboard, another window): the
        // page asks the host's registry first.
        for (int id : {add_button, edit_button, retrieve_button})
            SendMessageW(page, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), reinterpret_cast<LPARAM>(GetDlgItem(page, id)));
        current_meanwhile = ModalDialog_Current();
        EnumThreadWindows(
            ui_thread,
            [](HWND w, LPARAM count) -> BOOL {
                wchar_t text[128] = {};
                GetWindowTextW(w, text, 128);
                if (IsWindowVisible(w) && (std::wstring(text) == add_title || std::wstring(text) == edit_title))
                    ++*reinterpret_cast<int*>(count);
                return TRUE;
            },
            reinterpret_cast<LPARAM>(&editors_meanwhile));
        click(dialog, IDCANCEL);
    });
    click(page, add_button);
    ASSERT_TRUE(hand.join());
    EXPECT_EQ(editors_meanwhile, 1);
    EXPECT_EQ(current_meanwhile, first);
    EXPECT_EQ(ModalDialog_PokeCount() - pokes_before, 3u);
    EXPECT_EQ(ModalDialog_Current(), nullptr);
    EXPECT_EQ(row_count(list), 1);
}

TEST_F(preferences_window_test, retrieve_reports_a_list_without_servers_and_a_failed_transfer_and_keeps_the_list) {
    const char* port = std::getenv("TESSELLON_CDDB_PORT");
    if (!port) GTEST_SKIP() << "TESSELLON_CDDB_PORT not set (scripts/test sets it)";
    // The local server publishes no site list; the second address is not its CGI.
    save_server_list({record("127.0.0.1", port, "/~cddb/cddb.cgi", "Local"), record("127.0.0.1", port, "/nothing", "Wrong")});
    open();
    const std::vector<std::string> before = rows();

    select_row(list, 0);
    click(page, retrieve_button);
    ASSERT_TRUE(ui.host().pump_until([&] { return ui.host().popups().size() >= 1; })) << "no message after Retrieve";
    select_row(list, 1);
    click(page, retrieve_button);
    ASSERT_TRUE(ui.host().pump_until([&] { return ui.host().popups().size() >= 2; })) << "no message after Retrieve";

    const auto popups = ui.host().popups();
    ASSERT_EQ(popups.size(), 2u);
    EXPECT_EQ(popups[0].title, "discora Tagger");
    EXPECT_EQ(popups[0].message,
              "The server list retrieved from 127.0.0.1 contains no servers that are accessible by one of the supported "
              "protocols.\n\nThe current server list will be left unaltered.");
    const std::string lead = "An error occurred while trying to retrieve a server list from 127.0.0.1.\n\n";
    const std::string tail = "\n\nThe current server list will be left unaltered.";
    EXPECT_EQ(popups[1].message.rfind(lead, 0), 0u) << popups[1].message;
    ASSERT_GT(popups[1].message.size(), lead.size() + tail.size()) << popups[1].message;
    EXPECT_EQ(popups[1].message.substr(popups[1].message.size() - tail.size()), tail);
    EXPECT_EQ(rows(), before);
    EXPECT_FALSE(apply_enabled());
}
