#include "vorbis_comment_tags.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "field_table.h"
#include "taglib_text.h"

namespace linux_audio {

namespace {
bool has_value(const tag_record& tags, std::size_t field, const std::string& value) {
    for (std::size_t v = 0; v < tags.value_count(field); ++v)
        if (tags.value(field, v) == value) return true;
    return false;
}
} // namespace

tag_record read_vorbis_comment(const TagLib::Ogg::XiphComment& comment) {
    // The keys are put in the readers' order first and the record built once, in that order;
    // building it in the comment's order and reordering it would build it twice.
    struct keyed_field {
        std::string field;  // the host name, or the key lower-cased
        std::size_t rank;   // of field_order_of(field), worked out once rather than per comparison
        const TagLib::StringList* values;
    };
    std::vector<keyed_field> keys;
    keys.reserve(comment.fieldListMap().size());
    for (const auto& [key, values] : comment.fieldListMap()) {
        const std::string name = utf8_of(key);
        const std::string_view host = host_name_of_vorbis_key(name);
        std::string field = host.empty() ? lower_ascii(name) : std::string(host);
        const std::size_t rank = field_order_of(field).rank;
        keys.push_back({std::move(field), rank, &values});
    }
    // Stable: a field and its alias keep the comment's order of their keys.
    std::stable_sort(keys.begin(), keys.end(), [](const keyed_field& a, const keyed_field& b) {
        return field_order{a.rank, a.field} < field_order{b.rank, b.field};
    });

    tag_record tags;
    for (const keyed_field& k : keys) {
        // Keys are unique, so a field already present was read under another key: a file
        // carrying a field and its alias (TRACKTOTAL and TOTALTRACKS) usually repeats the
        // value, which is kept once so that a rewrite does not double it.
        std::size_t index = tags.find_field(k.field.c_str());
        const bool from_alias = index != tag_record::npos;
        for (const TagLib::String& value : *k.values) {
            const std::string text = utf8_of(value);
            if (from_alias && has_value(tags, index, text)) continue;
            if (index == tag_record::npos) index = tags.set_field(k.field.c_str(), text);
            else tags.add_value(index, text);
        }
    }
    return tags;
}

void write_vorbis_comment(TagLib::Ogg::XiphComment& comment, const tag_record& tags) {
    comment.removeAllFields();
    for (std::size_t i = 0; i < tags.field_count(); ++i) {
        const field_names* known = find_host_field(tags.field_name(i));
        if (known && !known->written) continue;
        const TagLib::String key(known ? std::string(known->vorbis) : upper_ascii(tags.field_name(i)), TagLib::String::UTF8);
        // A name the format cannot hold ('=' or bytes outside printable ASCII) is left out; the
        // table's keys are all valid.
        if (!known && !TagLib::Ogg::XiphComment::checkKey(key)) continue;
        for (std::size_t v = 0; v < tags.value_count(i); ++v)
            comment.addField(key, TagLib::String(tags.value(i, v), TagLib::String::UTF8), false);
    }
}

} // namespace linux_audio
