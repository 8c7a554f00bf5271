#include "cli/json_writer.h"

#include <cstdio>

namespace tessellon_cli {

void json_writer::separate() {
    if (after_key_) {
        after_key_ = false;
        return;
    }
    if (!first_.empty()) {
        if (!first_.back()) out_ += ',';
        first_.back() = false;
    }
}

json_writer& json_writer::begin_object() {
    separate();
    out_ += '{';
    first_.push_back(true);
    return *this;
}

json_writer& json_writer::end_object() {
    out_ += '}';
    first_.pop_back();
    return *this;
}

json_writer& json_writer::begin_array() {
    separate();
    out_ += '[';
    first_.push_back(true);
    return *this;
}

json_writer& json_writer::end_array() {
    out_ += ']';
    first_.pop_back();
    return *this;
}

json_writer& json_writer::key(const std::string& name) {
    value(name);
    out_ += ':';
    after_key_ = true;
    return *this;
}

json_writer& json_writer::value(const std::string& text) {
    separate();
    out_ += '"';
    for (unsigned char c : text) {
        switch (c) {
        case '"': out_ += "\\\""; break;
        case '\\': out_ += "\\\\"; break;
        case '\n': out_ += "\\n"; break;
        case '\r': out_ += "\\r"; break;
        case '\t': out_ += "\\t"; break;
        default:
            if (c < 0x20) {
                char buf[8];
                std::snprintf(buf, sizeof buf, "\\u%04x", c);
                out_ += buf;
            } else {
                out_ += static_cast<char>(c);
            }
        }
    }
    out_ += '"';
    return *this;
}

json_writer& json_writer::value(std::int64_t number) {
    separate();
    out_ += std::to_string(number);
    return *this;
}

json_writer& json_writer::value(std::optional<std::int64_t> number) { return number ? value(*number) : null(); }

json_writer& json_writer::value(double number) {
    separate();
    char buf[32];
    std::snprintf(buf, sizeof buf, "%.6f", number);
    out_ += buf;
    return *this;
}

json_writer& json_writer::value(bool flag) {
    separate();
    out_ += flag ? "true" : "false";
    return *this;
}

json_writer& json_writer::null() {
    separate();
    out_ += "null";
    return *this;
}

json_writer& json_writer::strings(const std::vector<std::string>& texts) {
    begin_array();
    for (auto& t : texts) value(t);
    return end_array();
}

} // namespace tessellon_cli
