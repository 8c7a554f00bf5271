#include "ui_support.h"

#include <commctrl.h>

#include <algorithm>
#include <atomic>
#include <fstream>

#include <hostkit/file_util.h>
#include <hostkit/plain_track.h>
#include <tunehall/core.h>
#include <tunehall/shared.h>

#include "host/entry.h"
#include "host_text.h"

namespace ui_testing {

namespace {

LRESULT send(HWND window, UINT message, WPARAM wp = 0, LPARAM lp = 0) { return SendMessageW(window, message, wp, lp); }

void set_key_state(bool shift, bool control) {
    BYTE keys[256];
    GetKeyboardState(keys);
    keys[VK_SHIFT] = keys[VK_LSHIFT] = shift ? 0x80 : 0;
    keys[VK_CONTROL] = keys[VK_LCONTROL] = control ? 0x80 : 0;
    SetKeyboardState(keys);
}

// The middle of a cell, in the list's client coordinates, as a mouse message carries it.
LPARAM middle_of_cell(HWND list, int row, int column) {
    RECT r{};
    r.top = column;
    r.left = column == 0 ? LVIR_LABEL : LVIR_BOUNDS;
    send(list, LVM_GETSUBITEMRECT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&r));
    return MAKELPARAM((r.left + r.right) / 2, (r.top + r.bottom) / 2);
}

} // namespace

ui_host::ui_host(const std::vector<std::string>& manifest_lines) : manifest_(folder_ / "library.tsv") {
    std::ofstream out(manifest_, std::ios::binary);
    for (const std::string& line : manifest_lines) out << line << "\n";
    out.close();
    winhost::test_host_options options;
    options.profile = folder_ / "profile";
    options.manifest = manifest_;
    host_ = std::make_unique<winhost::test_host>(options);
    host_->attach_component(&tunehall_get_interface, hostkit::path_utf8(folder_ / "sonatag2.dll"));
}

service_ref<lookup_state> make_lookup(const std::vector<match>& matches) {
    track_list tracks;
    for (std::size_t i = 0; i < matches.at(0).titles.size(); ++i)
        tracks.push_back(hostkit::make_plain_track("C:\\music\\album\\" + std::to_string(i + 1) + ".flac", 200.0 + static_cast<double>(i)));
    auto state = make_service<lookup_state>(tracks);
    server_result result{"Main server", {}};
    for (const match& m : matches) {
        disc_record r;
        r.set_field(disc_record::category, "misc");
        r.set_field(disc_record::discid, "8608460b");
        r.set_field(disc_record::dtitle, m.dtitle.c_str());
        r.set_track_count(m.titles.size());
        for (std::size_t i = 0; i < m.titles.size(); ++i) {
            r.set_track_field(i, disc_record::ttitle, m.titles[i].c_str());
            if (i < m.comments.size()) r.set_track_field(i, disc_record::extt, m.comments[i].c_str());
        }
        result.records.push_back(std::move(r));
    }
    state->results.push_back(std::move(result));
    return state;
}

HWND open_tagger(winhost::test_host& host, service_ref<lookup_state> state) {
    std::vector<HWND> before = host.open_windows();
    all_services<tagger_dialog_factory>().at(0)->open(host.main_window(), std::move(state));
    host.pump();
    for (HWND w : host.open_windows())
        if (std::find(before.begin(), before.end(), w) == before.end()) return w;
    return nullptr;
}

std::string text_of(HWND window) {
    std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
    text.resize(static_cast<std::size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
    return winhost::narrow(text);
}

RECT screen_rect(HWND window) {
    RECT r{};
    GetWindowRect(window, &r);
    return r;
}

int row_count(HWND list) { return static_cast<int>(send(list, LVM_GETITEMCOUNT)); }

std::string cell(HWND list, int row, int column) {
    wchar_t buffer[1024] = {};
    LVITEMW it{};
    it.iSubItem = column;
    it.pszText = buffer;
    it.cchTextMax = 1024;
    send(list, LVM_GETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&it));
    return winhost::narrow(buffer);
}

std::optional<int> selected_row(HWND list) {
    int at = static_cast<int>(send(list, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED));
    return at < 0 ? std::nullopt : std::optional<int>(at);
}

void focus_row(HWND list, int row) {
    LVITEMW focused{};
    focused.stateMask = focused.state = LVIS_FOCUSED;
    send(list, LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&focused));
}

void press_key(HWND target, UINT key, bool shift, bool control) {
    set_key_state(shift, control);
    send(target, WM_KEYDOWN, key, 1);
    send(target, WM_KEYUP, key, 0xC0000001);
    set_key_state(false, false);
}

void click_cell(HWND list, int row, int column) {
    LPARAM at = middle_of_cell(list, row, column);
    PostMessageW(list, WM_LBUTTONDOWN, MK_LBUTTON, at);
    PostMessageW(list, WM_LBUTTONUP, 0, at);
}

HWND cell_editor(HWND list) {
    HWND container = FindWindowExW(list, nullptr, L"sonatag2:in_place_editor", nullptr);
    if (!container) return nullptr;
    HWND edit = FindWindowExW(container, nullptr, L"Edit", nullptr);
    return edit ? edit : FindWindowExW(container, nullptr, L"ComboBox", nullptr);
}

void double_click_cell(HWND list, int row, int column) {
    click_cell(list, row, column);
    LPARAM at = middle_of_cell(list, row, column);
    PostMessageW(list, WM_LBUTTONDBLCLK, MK_LBUTTON, at);
    PostMessageW(list, WM_LBUTTONUP, 0, at);
}

HWND find_thread_window(DWORD thread, const std::function<bool(HWND)>& wanted) {
    struct search {
        const std::function<bool(HWND)>& wanted;
        HWND found = nullptr;
    } s{wanted};
    EnumThreadWindows(
        thread,
        [](HWND w, LPARAM lp) -> BOOL {
            auto* s = reinterpret_cast<search*>(lp);
            if (!s->wanted(w)) return TRUE;
            s->found = w;
            return FALSE;
        },
        reinterpret_cast<LPARAM>(&s));
    return s.found;
}

HWND find_thread_window(DWORD thread, const std::wstring& title, HWND owner) {
    return find_thread_window(thread, [&](HWND w) {
        wchar_t text[256] = {};
        GetWindowTextW(w, text, 256);
        return title == text && IsWindowVisible(w) && (!owner || GetWindow(w, GW_OWNER) == owner);
    });
}

modal_hand::modal_hand(std::function<HWND()> find, std::function<void(HWND)> act, std::chrono::milliseconds limit)
    : thread_([this, find = std::move(find), act = std::move(act), limit] {
          const auto deadline = std::chrono::steady_clock::now() + limit;
          HWND window = nullptr;
          while (!(window = find()) && std::chrono::steady_clock::now() < deadline)
              std::this_thread::sleep_for(std::chrono::milliseconds(20));
          found_ = window != nullptr;
          act(window);
          // A failing test must not leave the main thread in a modal loop for ever.
          if (!window)
              if (HWND stuck = ModalDialog_Current()) PostMessageW(stuck, WM_CLOSE, 0, 0);
      }) {}

modal_hand::~modal_hand() { join(); }

bool modal_hand::join() {
    if (thread_.joinable()) thread_.join();
    return found_;
}

} // namespace ui_testing
