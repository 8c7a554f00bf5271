#include "guid.h"

#include <cstdio>

namespace tunehall {

bool guid_less::operator()(const GUID& a, const GUID& b) const {
    if (a.Data1 != b.Data1) return a.Data1 < b.Data1;
    if (a.Data2 != b.Data2) return a.Data2 < b.Data2;
    if (a.Data3 != b.Data3) return a.Data3 < b.Data3;
    return std::memcmp(a.Data4, b.Data4, sizeof a.Data4) < 0;
}

std::string guid_to_text(const GUID& g) {
    static const char digits[] = "0123456789ABCDEF";
    std::string out;
    out.reserve(36);
    auto hex = [&](unsigned long long v, int n) {
        for (int i = n - 1; i >= 0; --i) out += digits[(v >> (i * 4)) & 0xF];
    };
    hex(g.Data1, 8);
    out += '-';
    hex(g.Data2, 4);
    out += '-';
    hex(g.Data3, 4);
    out += '-';
    for (int i = 0; i < 8; ++i) {
        if (i == 2) out += '-';
        hex(g.Data4[i], 2);
    }
    return out;
}

bool guid_from_text(const char* text, GUID& out) {
    static const int layout[] = {8, 4, 4, 4, 12};
    unsigned char bytes[16];
    int b = 0;
    const char* p = text;
    for (int group = 0; group < 5; ++group) {
        if (group > 0 && *p++ != '-') return false;
        for (int i = 0; i < layout[group]; i += 2) {
            int v = 0;
            for (int k = 0; k < 2; ++k) {
                char c = *p++;
                int d = (c >= '0' && c <= '9') ? c - '0'
                      : (c >= 'A' && c <= 'F') ? c - 'A' + 10
                      : (c >= 'a' && c <= 'f') ? c - 'a' + 10 : -1;
                if (d < 0) return false;
                v = v * 16 + d;
            }
            bytes[b++] = static_cast<unsigned char>(v);
        }
    }
    if (*p != '\0') return false;
    out.Data1 = (std::uint32_t(bytes[0]) << 24) | (std::uint32_t(bytes[1]) << 16) | (std::uint32_t(bytes[2]) << 8) | bytes[3];
    out.Data2 = static_cast<std::uint16_t>((bytes[4] << 8) | bytes[5]);
    out.Data3 = static_cast<std::uint16_t>((bytes[6] << 8) | bytes[7]);
    std::memcpy(out.Data4, bytes + 8, 8);
    return true;
}

} // namespace tunehall
