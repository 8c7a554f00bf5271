#pragma once
// Suggestions under a text box while the user types, through the shell's auto-complete object.

#include <string>
#include <vector>

#include <tunehall/platform.h>

// Attaches `values` to the edit control `edit` (append and suggest). The shell object holds the
// list for as long as the control exists. False when the system offers no auto-complete object;
// the box then simply has no suggestions.
bool attach_auto_complete(HWND edit, const std::vector<std::string>& values);
