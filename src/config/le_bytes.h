#pragma once
// Little-endian 32-bit lengths and counts, the form every persisted setting uses, and a reader
// that treats running past the end of the bytes as malformed data.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// `n` as a 32-bit length; vexa::exception_overflow when it does not fit.
std::uint32_t u32_checked(std::uint64_t n);
void u32_le_append(std::string& out, std::uint32_t v);
std::uint32_t u32_le_decode(const unsigned char* p);

// Reads a block of bytes front to back; tunehall_io::exception_io_data_truncation when a read
// wants more than is left.
class blob_reader {
public:
    blob_reader(const void* data, std::size_t size)
        : p_(static_cast<const unsigned char*>(data)), left_(data ? size : 0) {}

    std::uint32_t u32_le();
    std::string_view bytes(std::size_t n);

private:
    const unsigned char* p_;
    std::size_t left_;
};
