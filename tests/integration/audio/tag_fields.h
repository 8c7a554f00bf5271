#pragma once
// Tag records as plain lists of (name, values), which tests can build in one expression and
// which GoogleTest prints readably when a comparison fails.

#include <string>
#include <utility>
#include <vector>

#include <tunehall/tag_record.h>

namespace audio_tests {

using field_list = std::vector<std::pair<std::string, std::vector<std::string>>>;

inline tag_record record_of(const field_list& fields) {
    tag_record r;
    for (const auto& [name, values] : fields)
        for (const std::string& v : values) r.add_tag_value(name.c_str(), v);
    return r;
}

inline field_list fields_of(const tag_record& r) {
    field_list out;
    for (std::size_t i = 0; i < r.field_count(); ++i) {
        out.emplace_back(r.field_name(i), std::vector<std::string>{});
        for (std::size_t v = 0; v < r.value_count(i); ++v) out.back().second.push_back(r.value(i, v));
    }
    return out;
}

} // namespace audio_tests
