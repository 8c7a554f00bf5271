#pragma once
// The test host's own window classes: a plain dialog-coloured window with an arrow cursor, and
// the object each window belongs to.

#include <windows.h>

namespace winhost {

// Registers class `name` with `procedure` in this program; registering it again is harmless
// (the system refuses the second one and the first stays).
inline void register_window_class(const wchar_t* name, WNDPROC procedure) {
    WNDCLASSEXW wc{};
    wc.cbSize = sizeof wc;
    wc.lpfnWndProc = procedure;
    wc.hInstance = GetModuleHandleW(nullptr);
    wc.hCursor = LoadCursorW(nullptr, MAKEINTRESOURCEW(32512));  // the arrow
    wc.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
    wc.lpszClassName = name;
    RegisterClassExW(&wc);
}

// The object a window of these classes belongs to: handed over as CreateWindowEx's last argument
// and kept in the window's user data from WM_NCCREATE on; null before that.
template <typename Owner>
Owner* window_owner(HWND window, UINT message, LPARAM lp) {
    if (message == WM_NCCREATE)
        SetWindowLongPtrW(window, GWLP_USERDATA,
                          reinterpret_cast<LONG_PTR>(reinterpret_cast<CREATESTRUCTW*>(lp)->lpCreateParams));
    return reinterpret_cast<Owner*>(GetWindowLongPtrW(window, GWLP_USERDATA));
}

} // namespace winhost
