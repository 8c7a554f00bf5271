#include "ui/win32/in_place_editor.h"

#include <commctrl.h>
#include <uxtheme.h>

#include <mutex>

#include "ui/win32/component_module.h"
#include "ui/win32/win32_text.h"

namespace {

constexpr const wchar_t* container_class = L"sonatag2:in_place_editor";

void register_container_class(WNDPROC proc) {
    static std::once_flag once;
    std::call_once(once, [proc] {
        WNDCLASSEXW wc{};
        wc.cbSize = sizeof wc;
        wc.lpfnWndProc = proc;
        wc.hInstance = component_module();
        wc.hCursor = LoadCursorW(nullptr, MAKEINTRESOURCEW(32512));  // IDC_ARROW
        wc.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_WINDOW + 1);
        wc.lpszClassName = container_class;
        RegisterClassExW(&wc);
    });
}

in_place::modifiers held_modifiers() {
    in_place::modifiers m;
    m.control = GetKeyState(VK_CONTROL) < 0;
    m.shift = GetKeyState(VK_SHIFT) < 0;
    m.alt = GetKeyState(VK_MENU) < 0;
    return m;
}

DWORD text_styles(std::uint32_t options) {
    DWORD style = WS_CHILD | WS_VISIBLE;
    if (options & in_place::multi_line) style |= ES_MULTILINE | ES_AUTOVSCROLL | WS_VSCROLL;
    else style |= ES_AUTOHSCROLL;
    if (options & in_place::read_only) style |= ES_READONLY;
    if (options & in_place::centred) style |= ES_CENTER;
    else if (options & in_place::right_aligned) style |= ES_RIGHT;
    return style;
}

std::u16string as_u16(const std::wstring& w) { return std::u16string(w.begin(), w.end()); }
std::wstring as_wide(const std::u16string& s) { return std::wstring(s.begin(), s.end()); }

// The clipboard's Unicode text, or nothing.
bool clipboard_text(HWND owner, std::wstring& out) {
    if (!OpenClipboard(owner)) return false;
    bool got = false;
    if (HANDLE data = GetClipboardData(CF_UNICODETEXT)) {
        if (auto* text = static_cast<const wchar_t*>(GlobalLock(data))) {
            out = text;
            GlobalUnlock(data);
            got = true;
        }
    }
    CloseClipboard();
    return got;
}

} // namespace

bool in_place_editor::system_supports_dark_theme() {
    // GetVersionEx reports what the program's manifest admits to; the kernel's own call tells the
    // truth.
    using rtl_get_version_fn = LONG(WINAPI*)(OSVERSIONINFOW*);
    HMODULE ntdll = GetModuleHandleW(L"ntdll.dll");
    auto get_version = ntdll ? reinterpret_cast<rtl_get_version_fn>(reinterpret_cast<void*>(GetProcAddress(ntdll, "RtlGetVersion")))
                             : nullptr;
    if (!get_version) return false;
    OSVERSIONINFOW info{};
    info.dwOSVersionInfoSize = sizeof info;
    if (get_version(&info) != 0) return false;
    return in_place::dark_theme_supported(info.dwMajorVersion, info.dwMinorVersion, info.dwBuildNumber);
}

in_place_editor::in_place_editor(HWND list, const RECT& cell, const std::string& text, std::uint32_t options,
                                 ended_fn ended)
    : options_(options), ended_fn_(std::move(ended)) {
    component_activation activation;
    create_container(list, cell);
    RECT inside;
    GetClientRect(container_, &inside);
    control_ = CreateWindowExW(0, L"EDIT", to_wide(text).c_str(), text_styles(options), 0, 0, inside.right, inside.bottom,
                               container_, nullptr, component_module(), nullptr);
    if (!control_) throw_win32_error("Cannot create the cell editor", GetLastError());
    finish_control(list);
    SendMessageW(control_, EM_SETSEL, 0, -1);
}

in_place_editor::in_place_editor(HWND list, const RECT& cell, const std::vector<std::string>& choices, int selected,
                                 std::uint32_t options, ended_fn ended)
    : options_(options), ended_fn_(std::move(ended)), is_choice_(true) {
    component_activation activation;
    create_container(list, cell);
    RECT inside;
    GetClientRect(container_, &inside);
    // The drop-down part hangs below the cell; the list grows as long as it needs.
    control_ = CreateWindowExW(0, L"COMBOBOX", L"", WS_CHILD | WS_VISIBLE | WS_VSCROLL | CBS_DROPDOWNLIST, 0, 0,
                               inside.right, inside.bottom + 200, container_,
                               reinterpret_cast<HMENU>(static_cast<INT_PTR>(choice_id)), component_module(), nullptr);
    if (!control_) throw_win32_error("Cannot create the cell editor", GetLastError());
    for (const std::string& c : choices) SendMessageW(control_, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(to_wide(c).c_str()));
    SendMessageW(control_, CB_SETCURSEL, static_cast<WPARAM>(selected), 0);
    finish_control(list);
}

in_place_editor::~in_place_editor() {
    if (container_) {
        SetWindowLongPtrW(container_, GWLP_USERDATA, 0);
        DestroyWindow(container_);
    }
}

void in_place_editor::create_container(HWND list, const RECT& cell) {
    register_container_class(&container_proc);
    RECT client, place;
    GetClientRect(list, &client);
    if (!IntersectRect(&place, &cell, &client)) place = cell;
    // Grown by the border's width so that the editor's inside covers the cell.
    InflateRect(&place, 1, 1);
    container_ = CreateWindowExW(0, container_class, L"", WS_CHILD | WS_BORDER | WS_CLIPCHILDREN, place.left, place.top,
                                 place.right - place.left, place.bottom - place.top, list, nullptr, component_module(),
                                 nullptr);
    if (!container_) throw_win32_error("Cannot create the cell editor", GetLastError());
    SetWindowLongPtrW(container_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
}

void in_place_editor::finish_control(HWND list) {
    SendMessageW(control_, WM_SETFONT, SendMessageW(list, WM_GETFONT, 0, 0), FALSE);
    if ((options_ & in_place::dark_theme) && system_supports_dark_theme())
        SetWindowTheme(control_, is_choice_ ? L"DarkMode_CFD" : L"DarkMode_Explorer", nullptr);
    SetWindowSubclass(control_, &control_proc, 0, reinterpret_cast<DWORD_PTR>(this));
    ShowWindow(container_, SW_SHOW);
    SetFocus(control_);
}

void in_place_editor::end(int code) {
    if (ended_ || !IsWindowEnabled(control_)) return;
    ended_ = true;
    end_code_ = code;
    SendMessageW(container_, msg_commit_now, 0, 0);
    PostMessageW(container_, msg_edit_ended, static_cast<WPARAM>(code), 0);
    EnableWindow(control_, FALSE);
}

void in_place_editor::take_text() {
    if (!is_choice_) {
        text_ = from_wide(window_text_wide(control_));
        return;
    }
    LRESULT at = SendMessageW(control_, CB_GETCURSEL, 0, 0);
    text_.clear();
    if (at == CB_ERR) return;
    LRESULT length = SendMessageW(control_, CB_GETLBTEXTLEN, static_cast<WPARAM>(at), 0);
    std::wstring item(static_cast<std::size_t>(length > 0 ? length : 0) + 1, L'\0');
    SendMessageW(control_, CB_GETLBTEXT, static_cast<WPARAM>(at), reinterpret_cast<LPARAM>(item.data()));
    item.resize(static_cast<std::size_t>(length > 0 ? length : 0));
    text_ = from_wide(item);
}

bool in_place_editor::handle_key(WPARAM key) {
    in_place::key_action action = in_place::action_for_key(static_cast<unsigned>(key), held_modifiers(), options_);
    if (int code = in_place::end_code_of(action); code >= 0) {
        end(code);
        return true;
    }
    if (is_choice_) return false;
    switch (action) {
    case in_place::key_action::select_all:
        SendMessageW(control_, EM_SETSEL, 0, -1);
        SendMessageW(control_, EM_SCROLLCARET, 0, 0);
        return true;
    case in_place::key_action::delete_word: {
        DWORD from = 0, to = 0;
        SendMessageW(control_, EM_GETSEL, reinterpret_cast<WPARAM>(&from), reinterpret_cast<LPARAM>(&to));
        std::size_t start = in_place::word_start_before(as_u16(window_text_wide(control_)), from);
        SendMessageW(control_, EM_SETSEL, start, to);
        SendMessageW(control_, EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(L""));
        return true;
    }
    default:
        return false;
    }
}

LRESULT CALLBACK in_place_editor::container_proc(HWND window, UINT message, WPARAM wp, LPARAM lp) {
    auto* self = reinterpret_cast<in_place_editor*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    switch (message) {
    case msg_commit_now:
        if (self) {
            self->take_text();
            if (self->committed_fn_) self->committed_fn_(self->text_, self->end_code_);
        }
        return 0;
    case msg_edit_ended:
        if (self) {
            // The owner may destroy this editor from the callback: nothing of it is used after.
            ended_fn done = self->ended_fn_;
            std::string text = self->text_;
            done(text, static_cast<int>(wp));
        }
        return 0;
    case WM_COMMAND:
        // Leaving the editor for another window keeps what was typed.
        if (self && (HIWORD(wp) == EN_KILLFOCUS || HIWORD(wp) == CBN_KILLFOCUS)) {
            HWND to = GetFocus();
            if (to != self->control_ && !IsChild(self->container_, to)) self->end(in_place::accepted);
        }
        return 0;
    default:
        return DefWindowProcW(window, message, wp, lp);
    }
}

LRESULT CALLBACK in_place_editor::control_proc(HWND window, UINT message, WPARAM wp, LPARAM lp, UINT_PTR, DWORD_PTR data) {
    auto* self = reinterpret_cast<in_place_editor*>(data);
    switch (message) {
    case WM_GETDLGCODE:
        // Every key comes here, inside a dialog too: Tab, Enter and Escape end the editor.
        return DLGC_WANTALLKEYS | DefSubclassProc(window, message, wp, lp);
    case WM_KEYDOWN:
        if (self->handle_key(wp)) return 0;
        break;
    case WM_CHAR:
        // The characters of keys that ended the editor or were handled must not reach the control.
        if (wp == L'\t' || wp == 0x1B || (wp == L'\r' && !(GetKeyState(VK_CONTROL) < 0)) || wp == 0x7F || wp == 0x01)
            return 0;
        break;
    case WM_PASTE:
        // A single line takes pasted lines joined by blanks instead of cutting at the first break.
        if (!self->is_choice_ && !(self->options_ & (in_place::multi_line | in_place::read_only))) {
            std::wstring pasted;
            if (clipboard_text(window, pasted)) {
                std::wstring line = as_wide(in_place::single_line_paste(as_u16(pasted)));
                SendMessageW(window, EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(line.c_str()));
            }
            return 0;
        }
        break;
    case WM_NCDESTROY:
        RemoveWindowSubclass(window, &control_proc, 0);
        break;
    default:
        break;
    }
    return DefSubclassProc(window, message, wp, lp);
}
