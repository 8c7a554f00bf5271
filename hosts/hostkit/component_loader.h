#pragma once
// Loads a component: finds its entry, hands it the core, tells it its path, and registers the
// services of its list beside the host's own.

#include <string>

#include <tunehall/component.h>

namespace hostkit {

class registry;

class loaded_component {
public:
    // Loads the module at `path` (dlopen / LoadLibraryW); exception_io naming the file when
    // it cannot be loaded or has no entry.
    loaded_component(registry& reg, const std::string& path);
    // A component linked into the host itself (tests): its entry and the path it would have.
    loaded_component(registry& reg, tunehall_get_interface_fn entry, const std::string& path);
    ~loaded_component();
    loaded_component(const loaded_component&) = delete;
    loaded_component& operator=(const loaded_component&) = delete;

    tunehall_client& client() { return *client_; }
    const std::string& path() const { return path_; }

private:
    void attach(tunehall_get_interface_fn entry);

    registry& registry_;
    std::string path_;
    void* module_ = nullptr;
    tunehall_client* client_ = nullptr;
};

} // namespace hostkit
