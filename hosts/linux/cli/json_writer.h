#pragma once
// A small JSON writer for the command line's --json output: values are written in the order
// the caller gives them, texts are escaped, numbers and null are plain.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tessellon_cli {

class json_writer {
public:
    json_writer& begin_object();
    json_writer& end_object();
    json_writer& begin_array();
    json_writer& end_array();
    // The next member's name (inside an object).
    json_writer& key(const std::string& name);
    json_writer& value(const std::string& text);
    json_writer& value(const char* text) { return value(std::string(text)); }
    json_writer& value(std::int64_t number);
    json_writer& value(std::optional<std::int64_t> number);
    json_writer& value(bool flag);
    json_writer& value(double number);
    json_writer& null();
    // A list of texts.
    json_writer& strings(const std::vector<std::string>& texts);

    const std::string& text() const { return out_; }

private:
    void separate();

    std::string out_;
    std::vector<bool> first_;  // per open container: no member written yet
    bool after_key_ = false;
};

} // namespace tessellon_cli
