#include "component_loader.h"

#include "module_loading.h"
#include "registry.h"

namespace hostkit {

loaded_component::loaded_component(registry& reg, const std::string& path) : registry_(reg), path_(path) {
    std::string error;
    module_ = load_module(path, error);
    if (!module_) throw tunehall_io::exception_io("Cannot load component " + path + ": " + error);
    auto entry = reinterpret_cast<tunehall_get_interface_fn>(find_symbol(module_, tunehall_entry_name));
    if (!entry) {
        unload_module(module_);
        throw tunehall_io::exception_io("Not a component (no " + std::string(tunehall_entry_name) + "): " + path);
    }
    attach(entry);
}

loaded_component::loaded_component(registry& reg, tunehall_get_interface_fn entry, const std::string& path)
    : registry_(reg), path_(path) {
    attach(entry);
}

void loaded_component::attach(tunehall_get_interface_fn entry) {
    client_ = entry(&registry_, static_cast<module_handle>(module_));
    client_->set_library_path(path_.c_str());
    registry_.add_list(client_->get_service_list());
    client_->services_init(true);
}

loaded_component::~loaded_component() {
    client_->services_init(false);
    registry_.remove_list(client_->get_service_list());
    if (module_) unload_module(module_);
}

} // namespace hostkit
