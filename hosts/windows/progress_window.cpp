#include "progress_window.h"

#include <commctrl.h>

#include <memory>

#include "host_text.h"
#include "window_class.h"

namespace winhost {

namespace {
constexpr UINT msg_set_item = WM_APP + 1;  // lParam: a new std::wstring, freed by the window
}

progress_window::progress_window(std::function<void()> cancel, std::function<void()> cancelled_task_ended)
    : cancel_(std::move(cancel)), cancelled_task_ended_(std::move(cancelled_task_ended)) {
    register_window_class(class_name, &window_proc);
}

progress_window::~progress_window() { close(); }

void progress_window::begin(const std::string& title, std::uint32_t flags) {
    std::lock_guard lock(lock_);
    if (depth_++ > 0) {
        if (HWND w = window_.load()) SetWindowTextW(w, widen(title).c_str());
        return;
    }
    thread_ = std::thread([this, title = widen(title), flags] { run(title, flags); });
    // The window exists (or failed to) before the task reports anything.
    while (!window_.load()) Sleep(1);
}

void progress_window::run(std::wstring title, std::uint32_t flags) {
    HWND w = CreateWindowExW(WS_EX_DLGMODALFRAME, class_name, title.c_str(), WS_POPUP | WS_CAPTION | WS_VISIBLE,
                             CW_USEDEFAULT, CW_USEDEFAULT, 360, 140, nullptr, nullptr, GetModuleHandleW(nullptr), this);
    if (!w) {
        window_.store(reinterpret_cast<HWND>(-1));
        return;
    }
    HFONT font = static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT));
    HWND item = CreateWindowExW(0, L"STATIC", L"", WS_CHILD | WS_VISIBLE | SS_PATHELLIPSIS, 12, 10, 330, 18, w,
                                reinterpret_cast<HMENU>(static_cast<INT_PTR>(item_id)), nullptr, nullptr);
    HWND bar = CreateWindowExW(0, PROGRESS_CLASSW, L"", WS_CHILD | WS_VISIBLE, 12, 34, 330, 18, w,
                               reinterpret_cast<HMENU>(static_cast<INT_PTR>(bar_id)), nullptr, nullptr);
    SendMessageW(bar, PBM_SETRANGE32, threaded_process_status::progress_min, threaded_process_status::progress_max);
    HWND cancel = CreateWindowExW(0, L"BUTTON", L"Cancel", WS_CHILD | WS_TABSTOP | BS_PUSHBUTTON |
                                  ((flags & threaded_process::flag_show_abort) ? WS_VISIBLE : 0),
                                  262, 62, 80, 24, w, reinterpret_cast<HMENU>(static_cast<INT_PTR>(cancel_id)), nullptr,
                                  nullptr);
    for (HWND c : {item, bar, cancel}) SendMessageW(c, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    window_.store(w);
    MSG msg;
    while (GetMessageW(&msg, nullptr, 0, 0) > 0) {
        TranslateMessage(&msg);
        DispatchMessageW(&msg);
    }
}

void progress_window::progress(std::uint32_t value) {
    if (HWND w = window_.load(); w && w != reinterpret_cast<HWND>(-1))
        PostMessageW(GetDlgItem(w, bar_id), PBM_SETPOS, value, 0);
}

void progress_window::item(const std::string& text) {
    if (HWND w = window_.load(); w && w != reinterpret_cast<HWND>(-1)) {
        auto* line = new std::wstring(widen(text));
        if (!PostMessageW(w, msg_set_item, 0, reinterpret_cast<LPARAM>(line))) delete line;
    }
}

void progress_window::end(bool) {
    std::lock_guard lock(lock_);
    if (--depth_ > 0) return;
    depth_ = 0;
    close();
    if (cancelled_.exchange(false)) cancelled_task_ended_();
}

void progress_window::close() {
    HWND w = window_.exchange(nullptr);
    if (w && w != reinterpret_cast<HWND>(-1)) PostMessageW(w, WM_CLOSE, 0, 0);
    if (thread_.joinable()) thread_.join();
}

LRESULT CALLBACK progress_window::window_proc(HWND window, UINT message, WPARAM wp, LPARAM lp) {
    auto* self = window_owner<progress_window>(window, message, lp);
    switch (message) {
    case msg_set_item: {
        std::unique_ptr<std::wstring> line(reinterpret_cast<std::wstring*>(lp));
        SetDlgItemTextW(window, item_id, line->c_str());
        return 0;
    }
    case WM_COMMAND:
        if (LOWORD(wp) == cancel_id && self) {
            EnableWindow(GetDlgItem(window, cancel_id), FALSE);
            self->cancelled_ = true;
            self->cancel_();
        }
        return 0;
    case WM_CLOSE:
        DestroyWindow(window);
        return 0;
    case WM_DESTROY:
        PostQuitMessage(0);
        return 0;
    default:
        return DefWindowProcW(window, message, wp, lp);
    }
}

} // namespace winhost
