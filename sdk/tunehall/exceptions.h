#pragma once
// Failures travel as exceptions carrying the user-visible text. The host's families live here;
// the component's own utility family (ZR::) lives in the component.

#include <cstdint>
#include <stdexcept>
#include <string>

namespace tunehall_io {

// General i/o failure; every kind below is one of these, so one catch sees them all.
class exception_io : public std::runtime_error {
public:
    exception_io() : std::runtime_error("Input/output error") {}
    explicit exception_io(const std::string& text) : std::runtime_error(text) {}
};

#define TUNEHALL_IO_KIND(NAME, BASE, TEXT)                                                   \
    class NAME : public BASE {                                                               \
    public:                                                                                  \
        NAME() : BASE(TEXT) {}                                                               \
        explicit NAME(const std::string& text) : BASE(text) {}                               \
    };

TUNEHALL_IO_KIND(exception_io_data, exception_io, "Unsupported format or corrupted file")
TUNEHALL_IO_KIND(exception_io_data_truncation, exception_io_data, "Unsupported format or corrupted file")
TUNEHALL_IO_KIND(exception_io_not_found, exception_io, "Object not found")
TUNEHALL_IO_KIND(exception_io_denied, exception_io, "Access denied")
TUNEHALL_IO_KIND(exception_io_sharing_violation, exception_io, "File is already in use")
TUNEHALL_IO_KIND(exception_io_already_exists, exception_io, "Object already exists")
TUNEHALL_IO_KIND(exception_io_no_handler_for_path, exception_io, "Unsupported file type or path")
TUNEHALL_IO_KIND(exception_aborted, exception_io, "User abort")

#undef TUNEHALL_IO_KIND

} // namespace tunehall_io

// Registry failures.
class exception_service_not_found : public std::runtime_error {
public:
    exception_service_not_found() : std::runtime_error("Service not found") {}
};
class exception_service_extension_not_found : public std::runtime_error {
public:
    exception_service_extension_not_found() : std::runtime_error("Service extension not found") {}
};
class exception_service_duplicated : public std::runtime_error {
public:
    exception_service_duplicated() : std::runtime_error("Service duplicated") {}
};

// A failed Windows call: the system's error code and its text.
class exception_win32 : public std::runtime_error {
public:
    exception_win32(std::uint32_t code, const std::string& text) : std::runtime_error(text), code_(code) {}
    std::uint32_t code() const { return code_; }

private:
    std::uint32_t code_;
};

// A cue-sheet time or index that cannot be read; a kind of malformed data.
class exception_bad_cuesheet : public tunehall_io::exception_io_data {
public:
    exception_bad_cuesheet() : exception_io_data("Bad cuesheet") {}
    explicit exception_bad_cuesheet(const std::string& text) : exception_io_data(text) {}
};

namespace vexa {
// A size or count that does not fit the form it must be written in.
class exception_overflow : public std::overflow_error {
public:
    exception_overflow() : std::overflow_error("Overflow") {}
};
} // namespace vexa
