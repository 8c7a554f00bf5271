#include "dark_mode.h"

#include <algorithm>

#include <uxtheme.h>

namespace winhost {

class dark_mode::attachment : public dark_mode_attachment {
public:
    attachment(dark_mode& owner, HWND window) : owner_(owner), window_(window) {}
    ~attachment() override { std::erase(owner_.attached_, window_); }

private:
    dark_mode& owner_;
    HWND window_;
};

namespace {

BOOL CALLBACK theme_child(HWND child, LPARAM) {
    SetWindowTheme(child, L"DarkMode_Explorer", nullptr);
    return TRUE;
}

} // namespace

service_ref<dark_mode_attachment> dark_mode::attach(HWND window) {
    if (dark_) {
        SetWindowTheme(window, L"DarkMode_Explorer", nullptr);
        EnumChildWindows(window, &theme_child, 0);
    }
    attached_.push_back(window);
    return make_service<attachment>(*this, window);
}

} // namespace winhost
