#include "config/preferences_page_text_width.h"

#include <commctrl.h>

int list_text_width(const dialog_view& view, int list, const std::string& text) {
    int length = MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(length), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), wide.data(), length);
    // The list measures in its own font, so the column fits what the list will draw.
    HWND control = GetDlgItem(view.handle(), list);
    return static_cast<int>(SendMessageW(control, LVM_GETSTRINGWIDTHW, 0, reinterpret_cast<LPARAM>(wide.c_str())));
}
