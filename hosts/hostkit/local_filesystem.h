#pragma once
// Local files: plain paths and "file://" paths, buffered so that reading one byte at a time
// costs no system call per byte.

#include <tunehall/stream.h>

namespace hostkit {

class local_filesystem : public filesystem {
public:
    bool is_our_path(const char* path) override;
    file_ptr open(const char* path, open_mode mode, abort_source& abort) override;
    void create_directory(const char* path, abort_source& abort) override;
};

} // namespace hostkit
