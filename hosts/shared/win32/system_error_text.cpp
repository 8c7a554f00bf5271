// A system error code as the system words it, in UTF-8.

#include <windows.h>

#include <cstdio>
#include <string>

#include <tunehall/shared.h>

TUNEHALL_SHARED_API void uFormatSystemErrorMessage(std::string* out, std::uint32_t code) {
    wchar_t* buffer = nullptr;
    DWORD n = FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                             nullptr, code, 0, reinterpret_cast<wchar_t*>(&buffer), 0, nullptr);
    out->clear();
    if (n > 0 && buffer) {
        while (n > 0 && (buffer[n - 1] == L'\r' || buffer[n - 1] == L'\n' || buffer[n - 1] == L' ')) --n;
        int bytes = WideCharToMultiByte(CP_UTF8, 0, buffer, static_cast<int>(n), nullptr, 0, nullptr, nullptr);
        out->resize(static_cast<std::size_t>(bytes));
        WideCharToMultiByte(CP_UTF8, 0, buffer, static_cast<int>(n), out->data(), bytes, nullptr, nullptr);
    }
    if (buffer) LocalFree(buffer);
    if (out->empty()) {
        char fallback[32];
        std::snprintf(fallback, sizeof fallback, "Windows error %lu", static_cast<unsigned long>(code));
        *out = fallback;
    }
}
