#pragma once
// The host's preferences window: shows one component page with Reset, OK, Cancel and Apply.

#include <tunehall/preferences_page.h>

namespace winhost {

class preferences_frame : public preferences_window {
public:
    explicit preferences_frame(HWND owner) : owner_(owner) {}
    ~preferences_frame() override;
    // Opens the window on `page` (brings it forward when already open). A page that cannot be
    // shown is reported in a popup.
    void show_page(const GUID& page) override;
    // The window, when open.
    HWND window() const { return window_; }
    void set_owner(HWND owner) { owner_ = owner; }

    static constexpr const wchar_t* class_name = L"tunehall:preferences";
    static constexpr int ok_id = 1, cancel_id = 2, apply_id = 3, reset_id = 4;

private:
    class callback;
    void close();
    void update_apply();
    static LRESULT CALLBACK window_proc(HWND window, UINT message, WPARAM wp, LPARAM lp);

    HWND owner_;
    HWND window_ = nullptr;
    service_ref<preferences_page_instance> page_;
};

} // namespace winhost
