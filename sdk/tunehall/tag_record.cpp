#include "tag_record.h"

#include "text.h"

namespace {
bool same_name(const std::string& a, const char* b) { return tunehall::ascii_iequals(a, b); }
} // namespace

std::size_t tag_record::find_field(const char* name) const {
    for (std::size_t i = 0; i < fields_.size(); ++i)
        if (same_name(fields_[i].first, name)) return i;
    return npos;
}

const char* tag_record::first_value(const char* name) const {
    std::size_t i = find_field(name);
    if (i == npos || fields_[i].second.empty()) return nullptr;
    return fields_[i].second.front().c_str();
}

std::size_t tag_record::set_field(const char* name, const std::string& value) {
    std::size_t i = find_field(name);
    if (i == npos) {
        fields_.push_back({name, {value}});
        return fields_.size() - 1;
    }
    fields_[i].second.assign(1, value);
    return i;
}

void tag_record::add_tag_value(const char* name, const std::string& value) {
    std::size_t i = find_field(name);
    if (i == npos) fields_.push_back({name, {value}});
    else fields_[i].second.push_back(value);
}

bool tag_record::remove_field(const char* name) {
    std::size_t i = find_field(name);
    if (i == npos) return false;
    remove_field(i);
    return true;
}
