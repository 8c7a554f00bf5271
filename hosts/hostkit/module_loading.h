#pragma once
// A shared library loaded by path, in the platform's own way (win32/ and posix/ hold the two).

#include <string>

namespace hostkit {

// The module, or null with `error` saying why.
void* load_module(const std::string& path, std::string& error);
void* find_symbol(void* module, const char* name);
void unload_module(void* module);

} // namespace hostkit
