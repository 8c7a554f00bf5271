#pragma once
// Byte streams and the file-system layer. `filesystem::g_open` also performs HTTP GET for
// http and https URLs; the host buffers streams, so reading one byte at a time is cheap.

#include <cstddef>
#include <cstdint>
#include <string>

#include "abort.h"
#include "service.h"

// Source of bytes.
class stream_reader {
public:
    // Reads up to `size` bytes; returns how many were read, 0 only at the end of the stream.
    virtual std::size_t read(void* buffer, std::size_t size, abort_source& abort) = 0;
    // Reads exactly `size` bytes or raises exception_io_data_truncation.
    void read_exact(void* buffer, std::size_t size, abort_source& abort);
    // Reads the rest of the stream into memory.
    std::string read_all(abort_source& abort);

protected:
    ~stream_reader() = default;
};

// Sink of bytes.
class stream_writer {
public:
    // Writes all `size` bytes or raises an i/o exception.
    virtual void write(const void* buffer, std::size_t size, abort_source& abort) = 0;
    void write_u32_le(std::uint32_t v, abort_source& abort);

protected:
    ~stream_writer() = default;
};

// An open file or network resource.
class file : public service_base, public stream_reader, public stream_writer {
    TUNEHALL_SERVICE_CLASS(service_base, {0x3b0d6e52, 0x41c1, 0x4d7e, {0x9a, 0x52, 0x6d, 0x0e, 0x21, 0x8f, 0x4c, 0x17}})
public:
    // Total size in bytes, or UINT64_MAX when unknown (a network stream).
    virtual std::uint64_t size(abort_source& abort) = 0;
};
using file_ptr = service_ref<file>;

// A handler for one kind of path ("file://", plain paths, "http://", "https://").
class filesystem : public service_base {
    TUNEHALL_SERVICE_CLASS(service_base, {0x5c1a8f3e, 0x9d24, 0x4b0a, {0x8e, 0x7f, 0x11, 0x42, 0x63, 0xa9, 0x0b, 0xd5}})
public:
    enum class open_mode { read, write_new };

    // True when this handler serves `path`.
    virtual bool is_our_path(const char* path) = 0;
    // Opens `path`; raises the i/o family (not found, denied, data, aborted) on failure.
    virtual file_ptr open(const char* path, open_mode mode, abort_source& abort) = 0;
    // Creates a folder; raises exception_io_already_exists when it is there.
    virtual void create_directory(const char* path, abort_source& abort) = 0;

    // Opens `path` through the first handler that serves it, in the host's order;
    // exception_io_no_handler_for_path when none does.
    static file_ptr g_open(const char* path, open_mode mode, abort_source& abort);
    static void g_create_directory(const char* path, abort_source& abort);
};
