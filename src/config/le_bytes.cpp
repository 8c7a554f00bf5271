#include "config/le_bytes.h"

#include <tunehall/exceptions.h>

std::uint32_t u32_checked(std::uint64_t n) {
    if (n > UINT32_MAX) throw vexa::exception_overflow();
    return static_cast<std::uint32_t>(n);
}

void u32_le_append(std::string& out, std::uint32_t v) {
    for (int shift = 0; shift < 32; shift += 8) out += static_cast<char>((v >> shift) & 0xFF);
}

std::uint32_t u32_le_decode(const unsigned char* p) {
    return std::uint32_t(p[0]) | (std::uint32_t(p[1]) << 8) | (std::uint32_t(p[2]) << 16) |
           (std::uint32_t(p[3]) << 24);
}

std::uint32_t blob_reader::u32_le() {
    std::string_view b = bytes(4);
    return u32_le_decode(reinterpret_cast<const unsigned char*>(b.data()));
}

std::string_view blob_reader::bytes(std::size_t n) {
    if (n > left_) throw tunehall_io::exception_io_data_truncation();
    std::string_view out(reinterpret_cast<const char*>(p_), n);
    p_ += n;
    left_ -= n;
    return out;
}
