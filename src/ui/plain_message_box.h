#pragma once
// A message for the user when the host offers no popup service: the system's message box on
// Windows, the host's console elsewhere.

#include <string>

#include <tunehall/platform.h>

void plain_message_box(HWND parent, const std::string& text, const std::string& title);
