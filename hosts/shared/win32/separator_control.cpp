// The caption separator control: the text in the font it was given, then an etched line to the
// right edge, centred on the text's height.

#include "separator_control.h"

#include <string>

namespace {

constexpr int font_slot = 0;  // window extra bytes: the HFONT given by WM_SETFONT
constexpr int gap = 4;        // pixels between the text and the line

HFONT font_of(HWND window) { return reinterpret_cast<HFONT>(GetWindowLongPtrW(window, font_slot)); }

std::wstring text_of(HWND window) {
    std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
    text.resize(static_cast<std::size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
    return text;
}

void paint(HWND window) {
    PAINTSTRUCT ps;
    HDC dc = BeginPaint(window, &ps);
    RECT client;
    GetClientRect(window, &client);
    // The parent chooses the background, as for a static control.
    HWND parent = GetParent(window);
    auto brush = reinterpret_cast<HBRUSH>(
        parent ? SendMessageW(parent, WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(dc), reinterpret_cast<LPARAM>(window)) : 0);
    FillRect(dc, &client, brush ? brush : GetSysColorBrush(COLOR_BTNFACE));

    HFONT font = font_of(window);
    HGDIOBJ old_font = SelectObject(dc, font ? static_cast<HGDIOBJ>(font) : GetStockObject(DEFAULT_GUI_FONT));
    SetBkMode(dc, TRANSPARENT);
    if (!brush) SetTextColor(dc, GetSysColor(COLOR_WINDOWTEXT));
    if (!IsWindowEnabled(window)) SetTextColor(dc, GetSysColor(COLOR_GRAYTEXT));
    const std::wstring text = text_of(window);
    SIZE extent{0, 0};
    TEXTMETRICW metrics{};
    GetTextMetricsW(dc, &metrics);
    int line_from = client.left;
    if (!text.empty()) {
        RECT place = client;
        DrawTextW(dc, text.c_str(), static_cast<int>(text.size()), &place,
                  DT_LEFT | DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
        GetTextExtentPoint32W(dc, text.c_str(), static_cast<int>(text.size()), &extent);
        line_from = client.left + extent.cx + gap;
    }
    SelectObject(dc, old_font);
    if (line_from < client.right) {
        RECT line{line_from, (client.top + client.bottom) / 2, client.right, (client.top + client.bottom) / 2 + 2};
        DrawEdge(dc, &line, EDGE_ETCHED, BF_TOP);
    }
    EndPaint(window, &ps);
}

LRESULT CALLBACK separator_proc(HWND window, UINT message, WPARAM wp, LPARAM lp) {
    switch (message) {
    case WM_SETFONT:
        SetWindowLongPtrW(window, font_slot, static_cast<LONG_PTR>(wp));
        if (LOWORD(lp)) InvalidateRect(window, nullptr, TRUE);
        return 0;
    case WM_GETFONT:
        return static_cast<LRESULT>(GetWindowLongPtrW(window, font_slot));
    case WM_SETTEXT: {
        LRESULT r = DefWindowProcW(window, message, wp, lp);
        InvalidateRect(window, nullptr, TRUE);
        return r;
    }
    case WM_ENABLE:
        InvalidateRect(window, nullptr, TRUE);
        return 0;
    case WM_ERASEBKGND:
        return 1;  // painted whole in WM_PAINT
    case WM_PAINT:
        paint(window);
        return 0;
    case WM_NCHITTEST:
        return HTTRANSPARENT;  // a caption, not a control to click
    case WM_GETDLGCODE:
        return DLGC_STATIC;
    default:
        return DefWindowProcW(window, message, wp, lp);
    }
}

} // namespace

TUNEHALL_SHARED_API bool RegisterSeparatorClass() {
    HMODULE self = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&separator_proc), &self);
    WNDCLASSEXW existing{};
    existing.cbSize = sizeof existing;
    if (GetClassInfoExW(self, separator_class_name, &existing)) return true;
    WNDCLASSEXW wc{};
    wc.cbSize = sizeof wc;
    // Global: dialogs of every module in the process name it in their templates.
    wc.style = CS_GLOBALCLASS | CS_HREDRAW | CS_VREDRAW | CS_PARENTDC;
    wc.lpfnWndProc = &separator_proc;
    wc.cbWndExtra = sizeof(LONG_PTR);
    wc.hInstance = self;
    wc.hCursor = LoadCursorW(nullptr, MAKEINTRESOURCEW(32512));
    wc.lpszClassName = separator_class_name;
    return RegisterClassExW(&wc) != 0 || GetLastError() == ERROR_CLASS_ALREADY_EXISTS;
}
