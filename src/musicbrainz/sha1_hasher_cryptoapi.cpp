// The hasher on Windows CryptoAPI. Every call is preceded by SetLastError(0), so that the code a
// failure reports is the one that call left.

#include <tunehall/exceptions.h>
#include <tunehall/platform.h>  // <windows.h>, lean
#include <tunehall/shared.h>

#include <wincrypt.h>

#include "musicbrainz/sha1_hasher.h"

namespace {

[[noreturn]] void fail() {
    const DWORD code = GetLastError();
    std::string text;
    uFormatSystemErrorMessage(&text, code);
    throw exception_win32(code, text);
}

} // namespace

struct sha1_hasher::platform_state {
    HCRYPTPROV provider = 0;
    HCRYPTHASH hash = 0;  // created on the first add of each hash
    ALG_ID algorithm = CALG_SHA1;

    void start() {
        if (hash) return;
        SetLastError(0);
        if (!CryptCreateHash(provider, algorithm, 0, 0, &hash)) {
            hash = 0;
            fail();
        }
    }
    void discard() {
        if (!hash) return;
        SetLastError(0);
        CryptDestroyHash(hash);
        hash = 0;
    }
};

sha1_hasher::sha1_hasher() : state_(std::make_unique<platform_state>()) {
    // A verify context needs no key container: hashing only.
    SetLastError(0);
    if (!CryptAcquireContextW(&state_->provider, nullptr, nullptr, PROV_RSA_FULL, CRYPT_VERIFYCONTEXT | CRYPT_SILENT))
        fail();
}

sha1_hasher::~sha1_hasher() {
    state_->discard();
    SetLastError(0);
    CryptReleaseContext(state_->provider, 0);
}

void sha1_hasher::add(const void* data, std::size_t length) {
    state_->start();
    // CryptHashData takes a 32-bit length; larger data goes in pieces.
    const auto* bytes = static_cast<const BYTE*>(data);
    do {
        const DWORD piece = length > 0x40000000 ? 0x40000000 : static_cast<DWORD>(length);
        SetLastError(0);
        if (!CryptHashData(state_->hash, bytes, piece, 0)) fail();
        bytes += piece;
        length -= piece;
    } while (length > 0);
}

std::vector<std::uint8_t> sha1_hasher::finish() {
    state_->start();  // a hash of nothing is still a hash
    DWORD size = 0;
    DWORD size_length = sizeof size;
    SetLastError(0);
    if (!CryptGetHashParam(state_->hash, HP_HASHSIZE, reinterpret_cast<BYTE*>(&size), &size_length, 0)) fail();
    std::vector<std::uint8_t> digest(size);
    DWORD digest_length = size;
    SetLastError(0);
    if (!CryptGetHashParam(state_->hash, HP_HASHVAL, digest.data(), &digest_length, 0)) fail();
    state_->discard();
    return digest;
}
