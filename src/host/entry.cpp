// The component's one exported function.

#include <tunehall/component.h>

#include "host/component_client.h"

// Keeps the host's core and the module handle (the last call's) and returns the one client
// object. Does nothing else and never fails.
TUNEHALL_EXPORT tunehall_client* tunehall_get_interface(tunehall_core* core, module_handle module) {
    sonatag2::component_client& c = sonatag2::client();
    c.set_host(core, module);
    return &c;
}
