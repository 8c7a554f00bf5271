// Fatal errors and crash-report events (system error texts: win32/ and posix/).

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

