// Fatal errors, crash-report events and system error texts.

#include <tunehall/shared.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>

namespace {
std::mutex g_events_lock;
std::string g_events;  // the crash report's event lines, kept for the report
} // namespace

TUNEHALL_SHARED_API void uPrintCrashInfo_OnEvent(const char* text, std::size_t length) {
    if (length == TUNEHALL_NUL_TERMINATED) length = std::strlen(text);
    std::lock_guard lock(g_events_lock);
    g_events.append(text, length);
    g_events += '\n';
}

TUNEHALL_SHARED_API void uCrashInfo_Events(std::string* out) {
    std::lock_guard lock(g_events_lock);
    *out = g_events;
}

TUNEHALL_SHARED_API void uBugCheck(const char* text) {
    std::fprintf(stderr, "Fatal internal error: %s\n", text);
    std::fflush(stderr);
    std::abort();
}

#ifdef _WIN32
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
#else
TUNEHALL_SHARED_API void uFormatSystemErrorMessage(std::string* out, std::uint32_t code) {
    *out = std::strerror(static_cast<int>(code));
}
#endif
