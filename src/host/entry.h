#pragma once
// The entry, for programs that link the component's objects directly (the native tests).

#include <tunehall/component.h>

extern "C" tunehall_client* tunehall_get_interface(tunehall_core* core, module_handle module);
