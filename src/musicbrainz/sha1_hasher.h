#pragma once
// SHA-1 over the platform's cryptographic service (CryptoAPI on Windows, OpenSSL's libcrypto
// elsewhere). It names discs and fingerprints cached answers; it is not used for security.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

class sha1_hasher {
public:
    sha1_hasher();
    ~sha1_hasher();
    sha1_hasher(const sha1_hasher&) = delete;
    sha1_hasher& operator=(const sha1_hasher&) = delete;

    // Hashes `length` bytes; the first add after construction or finish starts a new hash.
    void add(const void* data, std::size_t length);
    void add(std::string_view text) { add(text.data(), text.size()); }
    // The digest (20 bytes) of everything added since the hash started; the hasher is then
    // ready for a new one.
    std::vector<std::uint8_t> finish();

private:
    struct platform_state;  // defined by each platform's file
    std::unique_ptr<platform_state> state_;
};

// Lower-case hexadecimal, two digits per byte, no separators.
std::string lowercase_hex(const std::vector<std::uint8_t>& bytes);
