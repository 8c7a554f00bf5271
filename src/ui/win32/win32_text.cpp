#include "ui/win32/win32_text.h"

#include <tunehall/exceptions.h>
#include <tunehall/shared.h>

std::wstring to_wide(const std::string& text) {
    if (text.empty()) return {};
    int n = MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
    std::wstring out(static_cast<std::size_t>(n), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), out.data(), n);
    return out;
}

std::string from_wide(const wchar_t* text, int length) {
    if (length < 0) length = static_cast<int>(wcslen(text));
    if (length == 0) return {};
    int n = WideCharToMultiByte(CP_UTF8, 0, text, length, nullptr, 0, nullptr, nullptr);
    std::string out(static_cast<std::size_t>(n), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, length, out.data(), n, nullptr, nullptr);
    return out;
}

std::wstring window_text_wide(HWND window) {
    int length = GetWindowTextLengthW(window);
    std::wstring text(static_cast<std::size_t>(length) + 1, L'\0');
    int got = GetWindowTextW(window, text.data(), length + 1);
    text.resize(static_cast<std::size_t>(got > 0 ? got : 0));
    return text;
}

void throw_win32_error(const char* what, unsigned long code) {
    std::string text;
    uFormatSystemErrorMessage(&text, static_cast<std::uint32_t>(code));
    throw exception_win32(static_cast<std::uint32_t>(code), std::string(what) + ": " + text);
}
