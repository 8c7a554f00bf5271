#include "ui/plain_message_box.h"

#include <tunehall/console.h>

void plain_message_box(HWND, const std::string& text, const std::string& title) {
    console_print((title + ": " + text).c_str());
}
