#include "hostkit/module_loading.h"

#include <dlfcn.h>

namespace hostkit {

void* load_module(const std::string& path, std::string& error) {
    void* m = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!m) error = dlerror();
    return m;
}
void* find_symbol(void* module, const char* name) { return dlsym(module, name); }
void unload_module(void* module) { dlclose(module); }

} // namespace hostkit
