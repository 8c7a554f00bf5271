// Window texts in UTF-8 over the system's wide-character calls.

#include <tunehall/shared.h>

#include <string>

namespace {
std::wstring widen(const char* text) {
    int n = MultiByteToWideChar(CP_UTF8, 0, text, -1, nullptr, 0);
    std::wstring out(static_cast<std::size_t>(n > 0 ? n - 1 : 0), L'\0');
    if (n > 1) MultiByteToWideChar(CP_UTF8, 0, text, -1, out.data(), n);
    return out;
}

std::string narrow(const wchar_t* text, int length) {
    int n = WideCharToMultiByte(CP_UTF8, 0, text, length, nullptr, 0, nullptr, nullptr);
    std::string out(static_cast<std::size_t>(n), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, length, out.data(), n, nullptr, nullptr);
    return out;
}

bool window_text(HWND window, std::string* out) {
    if (!IsWindow(window)) return false;
    int length = GetWindowTextLengthW(window);
    std::wstring buffer(static_cast<std::size_t>(length) + 1, L'\0');
    int got = GetWindowTextW(window, buffer.data(), length + 1);
    *out = narrow(buffer.data(), got);
    return true;
}
} // namespace

TUNEHALL_SHARED_API bool uSetDlgItemText(HWND dialog, int id, const char* text) {
    return SetDlgItemTextW(dialog, id, widen(text).c_str()) != FALSE;
}

TUNEHALL_SHARED_API bool uGetDlgItemText(HWND dialog, int id, std::string* out) {
    HWND item = GetDlgItem(dialog, id);
    return item && window_text(item, out);
}

TUNEHALL_SHARED_API bool uSetWindowText(HWND window, const char* text) {
    return SetWindowTextW(window, widen(text).c_str()) != FALSE;
}

TUNEHALL_SHARED_API bool uGetWindowText(HWND window, std::string* out) { return window_text(window, out); }
