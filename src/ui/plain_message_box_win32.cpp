#include "ui/plain_message_box.h"

#include <windows.h>

namespace {

std::wstring wide(const std::string& text) {
    const int n = MultiByteToWideChar(CP_UTF8, 0, text.c_str(), static_cast<int>(text.size()), nullptr, 0);
    std::wstring out(static_cast<std::size_t>(n > 0 ? n : 0), L'\0');
    if (n > 0) MultiByteToWideChar(CP_UTF8, 0, text.c_str(), static_cast<int>(text.size()), out.data(), n);
    return out;
}

} // namespace

void plain_message_box(HWND parent, const std::string& text, const std::string& title) {
    MessageBoxW(parent, wide(text).c_str(), wide(title).c_str(), MB_OK | MB_ICONINFORMATION);
}
