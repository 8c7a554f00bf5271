#include "stream.h"

#include <cstring>

#include "core.h"

void stream_reader::read_exact(void* buffer, std::size_t size, abort_source& abort) {
    auto* p = static_cast<unsigned char*>(buffer);
    while (size > 0) {
        std::size_t n = read(p, size, abort);
        if (n == 0) throw tunehall_io::exception_io_data_truncation();
        p += n;
        size -= n;
    }
}

std::string stream_reader::read_all(abort_source& abort) {
    std::string out;
    char chunk[16384];
    for (;;) {
        std::size_t n = read(chunk, sizeof chunk, abort);
        if (n == 0) return out;
        out.append(chunk, n);
    }
}

void stream_writer::write_u32_le(std::uint32_t v, abort_source& abort) {
    unsigned char b[4] = {static_cast<unsigned char>(v), static_cast<unsigned char>(v >> 8),
                          static_cast<unsigned char>(v >> 16), static_cast<unsigned char>(v >> 24)};
    write(b, 4, abort);
}

namespace {
service_ref<filesystem> handler_for(const char* path) {
    for (auto& fs : all_services<filesystem>())
        if (fs->is_our_path(path)) return fs;
    throw tunehall_io::exception_io_no_handler_for_path("Unsupported file type or path: " + std::string(path));
}
} // namespace

file_ptr filesystem::g_open(const char* path, open_mode mode, abort_source& abort) {
    return handler_for(path)->open(path, mode, abort);
}

void filesystem::g_create_directory(const char* path, abort_source& abort) {
    handler_for(path)->create_directory(path, abort);
}
