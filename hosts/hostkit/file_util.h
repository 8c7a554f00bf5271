#pragma once
// File helpers that take UTF-8 paths on every platform.

#include <cstdio>
#include <filesystem>
#include <string>

namespace hostkit {

// The path of a UTF-8 text.
std::filesystem::path utf8_path(const std::string& text);
// The UTF-8 text of a path.
std::string path_utf8(const std::filesystem::path& path);
// fopen with a UTF-8 path.
std::FILE* open_file(const std::filesystem::path& path, const char* mode);
// Writes `data` to `target` so that a crash at any moment leaves either the old or the new
// content: a temporary file beside it, flushed to the disk, then renamed over it.
void replace_file_atomically(const std::filesystem::path& target, const std::string& data);

} // namespace hostkit
