#pragma once
// Tag records: named fields, each with an ordered list of UTF-8 values. Field names compare
// without regard to ASCII case, as file formats do.

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

class tag_record {
public:
    static constexpr std::size_t npos = static_cast<std::size_t>(-1);

    // Number of fields.
    std::size_t field_count() const { return fields_.size(); }
    // Index of the field called `name`, or npos.
    std::size_t find_field(const char* name) const;
    // Name of field `index`.
    const std::string& field_name(std::size_t index) const { return fields_[index].first; }
    // Number of values of field `index`.
    std::size_t value_count(std::size_t index) const { return fields_[index].second.size(); }
    // Value `v` of field `index`.
    const std::string& value(std::size_t index, std::size_t v) const { return fields_[index].second[v]; }
    // First value of the field called `name`, or null.
    const char* first_value(const char* name) const;
    // Sets the field `name` to the single `value`, replacing a field of that name.
    std::size_t set_field(const char* name, const std::string& value);
    // Appends a value to field `index`.
    void add_value(std::size_t index, const std::string& value) { fields_[index].second.push_back(value); }
    // Appends `value` to the field `name`, creating the field when absent.
    void add_tag_value(const char* name, const std::string& value);
    // Removes field `index`.
    void remove_field(std::size_t index) { fields_.erase(fields_.begin() + static_cast<long>(index)); }
    // Removes the field `name` if present; true when it was.
    bool remove_field(const char* name);
    // Removes every field.
    void clear() { fields_.clear(); }
    // Replaces all fields by a copy of `other`'s.
    void copy_fields_from(const tag_record& other) { fields_ = other.fields_; }

    bool operator==(const tag_record& o) const = default;

private:
    std::vector<std::pair<std::string, std::vector<std::string>>> fields_;
};
