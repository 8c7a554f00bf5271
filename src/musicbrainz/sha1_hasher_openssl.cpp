// The hasher on OpenSSL's libcrypto, through its EVP digest interface.

#include <openssl/err.h>
#include <openssl/evp.h>

#include <stdexcept>

#include "musicbrainz/sha1_hasher.h"

namespace {

[[noreturn]] void fail(const char* call) {
    char reason[256];
    ERR_error_string_n(ERR_get_error(), reason, sizeof reason);
    throw std::runtime_error(std::string("SHA-1: ") + call + " failed: " + reason);
}

} // namespace

struct sha1_hasher::platform_state {
    EVP_MD_CTX* context = nullptr;  // null until the first add of a hash

    void start() {
        if (context) return;
        context = EVP_MD_CTX_new();
        if (!context) fail("EVP_MD_CTX_new");
        if (EVP_DigestInit_ex(context, EVP_sha1(), nullptr) != 1) {
            discard();
            fail("EVP_DigestInit_ex");
        }
    }
    void discard() {
        EVP_MD_CTX_free(context);
        context = nullptr;
    }
};

sha1_hasher::sha1_hasher() : state_(std::make_unique<platform_state>()) {}

sha1_hasher::~sha1_hasher() { state_->discard(); }

void sha1_hasher::add(const void* data, std::size_t length) {
    state_->start();
    if (EVP_DigestUpdate(state_->context, data, length) != 1) fail("EVP_DigestUpdate");
}

std::vector<std::uint8_t> sha1_hasher::finish() {
    state_->start();  // a hash of nothing is still a hash
    std::vector<std::uint8_t> digest(static_cast<std::size_t>(EVP_MD_size(EVP_sha1())));
    unsigned int size = 0;
    const int ok = EVP_DigestFinal_ex(state_->context, digest.data(), &size);
    state_->discard();
    if (ok != 1) fail("EVP_DigestFinal_ex");
    digest.resize(size);
    return digest;
}
