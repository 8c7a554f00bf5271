#include "hostkit/module_loading.h"

#include <windows.h>

namespace hostkit {

namespace {
std::wstring widen(const std::string& s) {
    int n = MultiByteToWideChar(CP_UTF8, 0, s.c_str(), -1, nullptr, 0);
    std::wstring w(static_cast<std::size_t>(n > 0 ? n - 1 : 0), L'\0');
    if (n > 1) MultiByteToWideChar(CP_UTF8, 0, s.c_str(), -1, w.data(), n);
    return w;
}
} // namespace

void* load_module(const std::string& path, std::string& error) {
    HMODULE m = LoadLibraryW(widen(path).c_str());
    if (!m) error = "Windows error " + std::to_string(GetLastError());
    return reinterpret_cast<void*>(m);
}
void* find_symbol(void* module, const char* name) {
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(module), name));
}
void unload_module(void* module) { FreeLibrary(static_cast<HMODULE>(module)); }

} // namespace hostkit
