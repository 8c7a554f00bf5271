#pragma once
// What the component knows about its own module: the handle and path the host gave it.

#include <string>

#include <tunehall/platform.h>

namespace sonatag2 {

// The file name the component is built to be installed under.
#ifdef _WIN32
inline constexpr const char* built_in_file_name = "sonatag2.dll";
#else
inline constexpr const char* built_in_file_name = "sonatag2.so";
#endif

inline constexpr const char* component_name = "Tessellon";
inline constexpr const char* component_version_text = "0.9";
// The module name sent in the CDDB hello.
inline constexpr const char* module_name = "sonatag2";

// The module handle from the entry call (null for a component linked into a test program).
module_handle this_module();
// The full path the host gave (UTF-8), and its file-name part (after the last separator).
std::string module_path();
std::string module_file_name();

} // namespace sonatag2
