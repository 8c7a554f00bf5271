#include "preferences_frame.h"

#include <tunehall/core.h>
#include <tunehall/popup.h>

#include "host_text.h"

namespace winhost {

class preferences_frame::callback : public preferences_page_callback {
public:
    explicit callback(preferences_frame& frame) : frame_(frame) {}
    void on_state_changed() override { frame_.update_apply(); }

private:
    preferences_frame& frame_;
};

preferences_frame::~preferences_frame() { close(); }

void preferences_frame::show_page(const GUID& guid) {
    if (window_) {
        SetForegroundWindow(window_);
        return;
    }
    service_ref<preferences_page> page;
    for (auto& p : all_services<preferences_page>())
        if (tunehall::guid_equal(p->get_guid(), guid)) page = p;
    if (!page) return;
    static const bool registered = [] {
        WNDCLASSEXW wc{};
        wc.cbSize = sizeof wc;
        wc.lpfnWndProc = &window_proc;
        wc.hInstance = GetModuleHandleW(nullptr);
        wc.hCursor = LoadCursorW(nullptr, MAKEINTRESOURCEW(32512));
        wc.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
        wc.lpszClassName = class_name;
        return RegisterClassExW(&wc) != 0;
    }();
    (void)registered;
    window_ = CreateWindowExW(WS_EX_DLGMODALFRAME, class_name, (L"Preferences: " + widen(page->get_name())).c_str(),
                              WS_POPUP | WS_CAPTION | WS_SYSMENU, CW_USEDEFAULT, CW_USEDEFAULT, 560, 560, owner_, nullptr,
                              GetModuleHandleW(nullptr), this);
    if (!window_) return;
    HFONT font = static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT));
    RECT client;
    GetClientRect(window_, &client);
    const int button_top = client.bottom - 34;
    const wchar_t* names[] = {L"OK", L"Cancel", L"Apply"};
    const int ids[] = {ok_id, cancel_id, apply_id};
    for (int i = 0; i < 3; ++i) {
        HWND b = CreateWindowExW(0, L"BUTTON", names[i], WS_CHILD | WS_VISIBLE | WS_TABSTOP | BS_PUSHBUTTON,
                                 client.right - 3 * 86 + i * 86 - 6, button_top, 80, 26, window_,
                                 reinterpret_cast<HMENU>(static_cast<INT_PTR>(ids[i])), nullptr, nullptr);
        SendMessageW(b, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    }
    try {
        page_ = page->instantiate(window_, make_service<callback>(*this));
        if (HWND inner = page_->get_wnd()) {
            SetWindowPos(inner, nullptr, 8, 8, client.right - 16, button_top - 16, SWP_NOZORDER | SWP_NOACTIVATE);
            ShowWindow(inner, SW_SHOW);
        }
    } catch (const std::exception& e) {
        close();
        if (auto popups = try_host_service<popup_message_v3>())
            popups->messageBoxAsync(owner_, e.what(), "Preferences", popup_message_v3::mb_icon_error, {});
        return;
    }
    update_apply();
    ShowWindow(window_, SW_SHOW);
}

void preferences_frame::update_apply() {
    if (window_ && page_)
        EnableWindow(GetDlgItem(window_, apply_id), (page_->get_state() & preferences_page_instance::state_changed) != 0);
}

void preferences_frame::close() {
    page_.reset();
    if (HWND w = window_) {
        window_ = nullptr;
        DestroyWindow(w);
    }
}

LRESULT CALLBACK preferences_frame::window_proc(HWND window, UINT message, WPARAM wp, LPARAM lp) {
    if (message == WM_NCCREATE)
        SetWindowLongPtrW(window, GWLP_USERDATA,
                          reinterpret_cast<LONG_PTR>(reinterpret_cast<CREATESTRUCTW*>(lp)->lpCreateParams));
    auto* self = reinterpret_cast<preferences_frame*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (self && message == WM_COMMAND && HIWORD(wp) == BN_CLICKED && reinterpret_cast<HWND>(lp) &&
        GetParent(reinterpret_cast<HWND>(lp)) == window) {
        switch (LOWORD(wp)) {
        case ok_id:
            if (self->page_) self->page_->apply();
            self->close();
            return 0;
        case apply_id:
            if (self->page_) self->page_->apply();
            self->update_apply();
            return 0;
        case cancel_id:
            self->close();
            return 0;
        default:
            break;
        }
    }
    if (self && message == WM_CLOSE) {
        self->close();
        return 0;
    }
    return DefWindowProcW(window, message, wp, lp);
}

} // namespace winhost
