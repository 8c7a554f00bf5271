#include "preferences_frame.h"

#include <tunehall/core.h>
#include <tunehall/popup.h>

#include "host_text.h"
#include "window_class.h"

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
    register_window_class(class_name, &window_proc);
    window_ = CreateWindowExW(WS_EX_DLGMODALFRAME | WS_EX_CONTROLPARENT, class_name,
                              (L"Preferences: " + widen(page->get_name())).c_str(), WS_POPUP | WS_CAPTION | WS_SYSMENU,
                              CW_USEDEFAULT, CW_USEDEFAULT, 560, 560, owner_, nullptr, GetModuleHandleW(nullptr), this);
    if (!window_) return;
    try {
        page_ = page->instantiate(window_, make_service<callback>(*this));
    } catch (const std::exception& e) {
        close();
        if (auto popups = try_host_service<popup_message_v3>())
            popups->messageBoxAsync(owner_, e.what(), "Preferences", popup_message_v3::mb_icon_error, {});
        return;
    }
    // The window fits the page as its template made it, with the buttons in a row below.
    constexpr int margin = 8, button_width = 80, button_height = 26, button_gap = 6;
    SIZE page_size{400, 300};
    HWND inner = page_->get_wnd();
    if (inner) {
        RECT r;
        GetWindowRect(inner, &r);
        page_size = {r.right - r.left, r.bottom - r.top};
    }
    RECT frame{0, 0, page_size.cx + 2 * margin, page_size.cy + 3 * margin + button_height};
    AdjustWindowRectEx(&frame, static_cast<DWORD>(GetWindowLongPtrW(window_, GWL_STYLE)), FALSE,
                       static_cast<DWORD>(GetWindowLongPtrW(window_, GWL_EXSTYLE)));
    SetWindowPos(window_, nullptr, 0, 0, frame.right - frame.left, frame.bottom - frame.top,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    RECT client;
    GetClientRect(window_, &client);
    if (inner) {
        SetWindowPos(inner, nullptr, margin, margin, page_size.cx, page_size.cy, SWP_NOZORDER | SWP_NOACTIVATE);
        ShowWindow(inner, SW_SHOW);
    }
    HFONT font = static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT));
    const int button_top = client.bottom - margin - button_height;
    struct button {
        const wchar_t* name;
        int id;
        int left;
    };
    const button buttons[] = {
        {L"Reset", reset_id, margin},
        {L"OK", ok_id, client.right - margin - 3 * button_width - 2 * button_gap},
        {L"Cancel", cancel_id, client.right - margin - 2 * button_width - button_gap},
        {L"Apply", apply_id, client.right - margin - button_width},
    };
    for (const button& b : buttons) {
        HWND made = CreateWindowExW(0, L"BUTTON", b.name, WS_CHILD | WS_VISIBLE | WS_TABSTOP | BS_PUSHBUTTON, b.left,
                                    button_top, button_width, button_height, window_,
                                    reinterpret_cast<HMENU>(static_cast<INT_PTR>(b.id)), nullptr, nullptr);
        SendMessageW(made, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
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
    auto* self = window_owner<preferences_frame>(window, message, lp);
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
        case reset_id:
            if (self->page_) self->page_->reset();
            self->update_apply();
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
