#pragma once
// The player's caption separator ("tunehall:separator"): a static-like control that draws its
// text followed by an etched horizontal line. Component dialogs name the class in their
// templates, so the player registers it (for every module of the process) before it loads them.

#include <tunehall/shared.h>

#ifdef _WIN32
inline constexpr const wchar_t* separator_class_name = L"tunehall:separator";

// Registers the class once; true when it is registered (now or before).
TUNEHALL_SHARED_API bool RegisterSeparatorClass();
#endif
