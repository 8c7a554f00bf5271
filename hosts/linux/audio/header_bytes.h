#pragma once
// Reading numbers out of a file header's bytes; the caller has checked that they are there.

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace linux_audio {

inline unsigned char byte_at(std::string_view bytes, std::size_t at) { return static_cast<unsigned char>(bytes[at]); }

// The `count`-byte big-endian number at `at`.
inline std::uint64_t big_endian(std::string_view bytes, std::size_t at, std::size_t count) {
    std::uint64_t v = 0;
    for (std::size_t i = 0; i < count; ++i) v = (v << 8) | byte_at(bytes, at + i);
    return v;
}

} // namespace linux_audio
