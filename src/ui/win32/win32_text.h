#pragma once
// UTF-8 texts of the component and the system's UTF-16 texts.

#include <string>

#include <tunehall/platform.h>

std::wstring to_wide(const std::string& text);
std::string from_wide(const wchar_t* text, int length = -1);
inline std::string from_wide(const std::wstring& text) { return from_wide(text.c_str(), static_cast<int>(text.size())); }
// A window's whole text, in UTF-16.
std::wstring window_text_wide(HWND window);
// The system's text for error `code`, as the exception carrying it says it.
[[noreturn]] void throw_win32_error(const char* what, unsigned long code);
