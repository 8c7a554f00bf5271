#include "component_loader.h"

#include "registry.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace hostkit {

namespace {

#ifdef _WIN32
std::wstring widen(const std::string& s) {
    int n = MultiByteToWideChar(CP_UTF8, 0, s.c_str(), -1, nullptr, 0);
    std::wstring w(static_cast<std::size_t>(n > 0 ? n - 1 : 0), L'\0');
    if (n > 1) MultiByteToWideChar(CP_UTF8, 0, s.c_str(), -1, w.data(), n);
    return w;
}
void* load_module(const std::string& path, std::string& error) {
    HMODULE m = LoadLibraryW(widen(path).c_str());
    if (!m) error = "Windows error " + std::to_string(GetLastError());
    return reinterpret_cast<void*>(m);
}
void* find_symbol(void* module, const char* name) {
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(module), name));
}
void unload_module(void* module) { FreeLibrary(static_cast<HMODULE>(module)); }
#else
void* load_module(const std::string& path, std::string& error) {
    void* m = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!m) error = dlerror();
    return m;
}
void* find_symbol(void* module, const char* name) { return dlsym(module, name); }
void unload_module(void* module) { dlclose(module); }
#endif

} // namespace

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
