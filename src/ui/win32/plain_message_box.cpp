#include "ui/plain_message_box.h"

#include <windows.h>

#include "ui/win32/win32_text.h"

void plain_message_box(HWND parent, const std::string& text, const std::string& title) {
    MessageBoxW(parent, to_wide(text).c_str(), to_wide(title).c_str(), MB_OK | MB_ICONINFORMATION);
}
