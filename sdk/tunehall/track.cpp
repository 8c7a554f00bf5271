#include "track.h"

#include <cstdio>
#include <cstring>

#include "exceptions.h"
#include "text.h"

const char* track_info::info_get(const char* name) const {
    for (auto& [key, value] : info)
        if (tunehall::ascii_iequals(key, name)) return value.c_str();
    return nullptr;
}

void track_info::info_set(const char* name, const std::string& value) {
    for (auto& [key, v] : info)
        if (tunehall::ascii_iequals(key, name)) { v = value; return; }
    info.emplace_back(name, value);
}

double cue_time_to_seconds(const char* text) {
    // Up to three colon-separated numbers, read from the right: frames, seconds, minutes.
    unsigned long long parts[3] = {0, 0, 0};
    int count = 0;
    const char* p = text;
    for (;;) {
        if (count == 3) throw exception_bad_cuesheet("invalid INDEX time syntax");
        if (*p < '0' || *p > '9') throw exception_bad_cuesheet("invalid INDEX time syntax");
        unsigned long long v = 0;
        while (*p >= '0' && *p <= '9') {
            v = v * 10 + static_cast<unsigned>(*p++ - '0');
            if (v > 0xFFFFFFFFull) throw exception_bad_cuesheet("invalid INDEX time syntax");
        }
        parts[count++] = v;
        if (*p == '\0') break;
        if (*p++ != ':') throw exception_bad_cuesheet("invalid INDEX time syntax");
    }
    unsigned long long frames = parts[count - 1];
    if (count >= 2) frames += parts[count - 2] * 75;
    if (count == 3) frames += parts[0] * 4500;
    return static_cast<double>(frames) / 75.0;
}

cue_indices read_cue_indices(const track_info& info) {
    cue_indices out;
    if (const char* pregap = info.info_get("pregap")) {
        out.pregap = cue_time_to_seconds(pregap);
        out.any = true;
    }
    char name[16];
    for (unsigned n = 2; n <= 99; ++n) {
        std::snprintf(name, sizeof name, "index %02u", n);
        if (const char* v = info.info_get(name)) {
            cue_time_to_seconds(v);  // a malformed index is a bad cue sheet even when unused
            out.any = true;
        }
    }
    return out;
}
