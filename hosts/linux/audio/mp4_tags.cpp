#include "mp4_tags.h"

#include <charconv>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "field_table.h"
#include "taglib_text.h"

namespace linux_audio {

namespace {

// Free-form atoms are keyed "----:<namespace>:<name>". Fields this host adds go under its own
// namespace; a field the file already had keeps the key it had, so that the programs which
// wrote it still find it.
const std::string freeform_marker = "----:";
const std::string own_namespace = "org.tessellon";

TagLib::String from_utf8(const std::string& s) { return TagLib::String(s, TagLib::String::UTF8); }

// The name part of a free-form key, or nothing for another atom. Table atoms are Latin-1
// ("\xa9nam"); free-form keys are UTF-8.
std::optional<std::string> freeform_name(const TagLib::String& key) {
    const std::string text = utf8_of(key);
    if (text.compare(0, freeform_marker.size(), freeform_marker) != 0) return std::nullopt;
    const std::size_t colon = text.find(':', freeform_marker.size());
    if (colon == std::string::npos) return std::nullopt;
    return text.substr(colon + 1);
}

bool is_table_atom(const TagLib::String& key) {
    const std::string name = key.to8Bit(false);
    for (const field_names& f : field_table)
        if (!f.mp4.empty() && f.mp4 == name) return true;
    return false;
}

void add_pair(tag_record& tags, const TagLib::MP4::Item& item, const char* number_name, const char* total_name) {
    const TagLib::MP4::Item::IntPair pair = item.toIntPair();
    // Zero stands for "not set" in these atoms.
    if (pair.first > 0) tags.add_tag_value(number_name, std::to_string(pair.first));
    if (pair.second > 0) tags.add_tag_value(total_name, std::to_string(pair.second));
}

// The number in the first value of `name`; 0 when absent or not a number (the atom holds
// numbers only).
int number_of(const tag_record& tags, const char* name) {
    const char* text = tags.first_value(name);
    if (!text) return 0;
    const std::string s = text;
    int n = 0;
    auto [end, error] = std::from_chars(s.data(), s.data() + s.size(), n);
    return error == std::errc() && end == s.data() + s.size() && n > 0 ? n : 0;
}

void set_pair(TagLib::MP4::Tag& tag, const char* atom, const tag_record& tags, const char* number_name,
              const char* total_name) {
    const int number = number_of(tags, number_name);
    const int total = number_of(tags, total_name);
    if (number > 0 || total > 0) tag.setItem(atom, TagLib::MP4::Item(number, total));
}

} // namespace

tag_record read_mp4(const TagLib::MP4::Tag& tag) {
    tag_record tags;
    for (const auto& [key, item] : tag.itemMap()) {
        const std::string atom = key.to8Bit(false);
        if (atom == "trkn") {
            add_pair(tags, item, "tracknumber", "totaltracks");
        } else if (atom == "disk") {
            add_pair(tags, item, "discnumber", "totaldiscs");
        } else {
            std::string field;
            if (const std::string_view host = host_name_of_mp4_atom(atom); !host.empty()) field = host;
            else if (const std::optional<std::string> name = freeform_name(key)) field = *name;
            else continue;
            for (const TagLib::String& value : item.toStringList()) tags.add_tag_value(field.c_str(), utf8_of(value));
        }
    }
    return in_table_order(tags);
}

void write_mp4(TagLib::MP4::Tag& tag, const tag_record& tags) {
    std::map<std::string, TagLib::String> freeform_keys;  // lower-cased field name -> its key
    std::vector<TagLib::String> old;
    for (const auto& [key, item] : tag.itemMap()) {
        const std::optional<std::string> name = freeform_name(key);
        if (name) freeform_keys.emplace(lower_ascii(*name), key);
        if (name || is_table_atom(key)) old.push_back(key);
    }
    for (const TagLib::String& key : old) tag.removeItem(key);

    set_pair(tag, "trkn", tags, "tracknumber", "totaltracks");
    set_pair(tag, "disk", tags, "discnumber", "totaldiscs");
    for (std::size_t i = 0; i < tags.field_count(); ++i) {
        const std::string& name = tags.field_name(i);
        const field_names* known = find_host_field(name);
        if (known && (!known->written || known->mp4 == "trkn" || known->mp4 == "disk")) continue;
        TagLib::StringList values;
        for (std::size_t v = 0; v < tags.value_count(i); ++v) values.append(from_utf8(tags.value(i, v)));
        TagLib::String key;
        if (known) key = TagLib::String(std::string(known->mp4), TagLib::String::Latin1);
        else if (auto it = freeform_keys.find(lower_ascii(name)); it != freeform_keys.end()) key = it->second;
        else key = from_utf8(freeform_marker + own_namespace + ":" + name);
        tag.setItem(key, TagLib::MP4::Item(values));
    }
}

} // namespace linux_audio
