// The registry of open modal dialogs: at most one component dialog is modal at a time, and a
// second request brings the open one forward instead.

#include <tunehall/shared.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <vector>

namespace {
std::mutex g_lock;
std::vector<HWND> g_open;           // innermost last
std::atomic<unsigned> g_pokes{0};
} // namespace

TUNEHALL_SHARED_API bool ModalDialog_CanCreateNew() {
    std::lock_guard lock(g_lock);
    return g_open.empty();
}

TUNEHALL_SHARED_API void ModalDialog_PokeExisting() {
    HWND top = ModalDialog_Current();
    if (!top) return;
#ifdef _WIN32
    SetForegroundWindow(top);
    FLASHWINFO flash{sizeof(FLASHWINFO), top, FLASHW_CAPTION, 2, 0};
    FlashWindowEx(&flash);
#endif
    ++g_pokes;
}

TUNEHALL_SHARED_API void ModalDialog_Switch(HWND window, bool open) {
    std::lock_guard lock(g_lock);
    if (open) {
        g_open.push_back(window);
    } else {
        auto it = std::find(g_open.rbegin(), g_open.rend(), window);
        if (it != g_open.rend()) g_open.erase(std::next(it).base());
    }
}

TUNEHALL_SHARED_API HWND ModalDialog_Current() {
    std::lock_guard lock(g_lock);
    return g_open.empty() ? nullptr : g_open.back();
}

TUNEHALL_SHARED_API unsigned ModalDialog_PokeCount() { return g_pokes.load(); }
