#pragma once
// The module that holds the component's resources, and the activation context of its manifest:
// windows made while it is active get the version 6 common controls (list-view groups, themes),
// whatever the host process itself asked for.

#include <tunehall/platform.h>

// The module this code is linked into: the component's DLL, or a test program that links the
// component's objects.
HINSTANCE component_module();

// Activates the component's manifest for its lifetime (nothing when the module has none).
class component_activation {
public:
    component_activation();
    ~component_activation();
    component_activation(const component_activation&) = delete;
    component_activation& operator=(const component_activation&) = delete;

private:
    ULONG_PTR cookie_ = 0;
    bool active_ = false;
};
