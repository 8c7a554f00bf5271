#pragma once
// The test host's own window classes: a plain dialog-coloured window with an arrow cursor.

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

} // namespace winhost
