// Case-insensitive comparison of UTF-8 texts with simple case folding of the common
// alphabets (Latin, Greek, Cyrillic). Malformed bytes compare as themselves.

#include <tunehall/shared.h>

#include <cstring>

namespace {

// Decodes one character; returns its byte length (1 for a malformed byte, taken as is).
std::size_t decode(const unsigned char* p, std::size_t left, char32_t& cp) {
    unsigned char c = p[0];
    std::size_t n = c < 0x80 ? 1 : (c & 0xE0) == 0xC0 ? 2 : (c & 0xF0) == 0xE0 ? 3 : (c & 0xF8) == 0xF0 ? 4 : 0;
    if (n == 0 || n > left) { cp = c; return 1; }
    if (n == 1) { cp = c; return 1; }
    char32_t v = c & (0x7F >> n);
    for (std::size_t i = 1; i < n; ++i) {
        if ((p[i] & 0xC0) != 0x80) { cp = c; return 1; }
        v = (v << 6) | (p[i] & 0x3F);
    }
    cp = v;
    return n;
}

char32_t fold(char32_t c) {
    if (c >= 'A' && c <= 'Z') return c + 32;
    if (c < 0xC0) return c;
    if (c <= 0xDE && c != 0xD7) return c + 32;                          // Latin-1 capitals
    if (c >= 0x100 && c <= 0x137 && !(c & 1)) return c + 1;             // Latin Extended-A pairs
    if (c >= 0x139 && c <= 0x148 && (c & 1)) return c + 1;
    if (c >= 0x14A && c <= 0x177 && !(c & 1)) return c + 1;
    if (c == 0x178) return 0xFF;
    if (c >= 0x179 && c <= 0x17E && (c & 1)) return c + 1;
    if (c >= 0x391 && c <= 0x3AB && c != 0x3A2) return c + 32;          // Greek
    if (c >= 0x410 && c <= 0x42F) return c + 32;                        // Cyrillic
    if (c >= 0x400 && c <= 0x40F) return c + 80;
    return c;
}

} // namespace

TUNEHALL_SHARED_API int stricmp_utf8_ex(const char* a, std::size_t len_a, const char* b, std::size_t len_b) {
    if (len_a == TUNEHALL_NUL_TERMINATED) len_a = std::strlen(a);
    if (len_b == TUNEHALL_NUL_TERMINATED) len_b = std::strlen(b);
    auto pa = reinterpret_cast<const unsigned char*>(a);
    auto pb = reinterpret_cast<const unsigned char*>(b);
    std::size_t ia = 0, ib = 0;
    while (ia < len_a && ib < len_b && pa[ia] && pb[ib]) {
        char32_t ca, cb;
        ia += decode(pa + ia, len_a - ia, ca);
        ib += decode(pb + ib, len_b - ib, cb);
        ca = fold(ca);
        cb = fold(cb);
        if (ca != cb) return ca < cb ? -1 : 1;
    }
    bool end_a = ia >= len_a || !pa[ia], end_b = ib >= len_b || !pb[ib];
    return end_a == end_b ? 0 : end_a ? -1 : 1;
}

TUNEHALL_SHARED_API int stricmp_utf8(const char* a, const char* b) {
    return stricmp_utf8_ex(a, TUNEHALL_NUL_TERMINATED, b, TUNEHALL_NUL_TERMINATED);
}
