#include "vorbis_comment_tags.h"

#include <string>

#include "field_table.h"

namespace linux_audio {

namespace {
bool has_value(const tag_record& tags, const std::string& field, const std::string& value) {
    const std::size_t index = tags.find_field(field.c_str());
    if (index == tag_record::npos) return false;
    for (std::size_t v = 0; v < tags.value_count(index); ++v)
        if (tags.value(index, v) == value) return true;
    return false;
}
} // namespace

tag_record read_vorbis_comment(const TagLib::Ogg::XiphComment& comment) {
    tag_record tags;
    for (const auto& [key, values] : comment.fieldListMap()) {
        const std::string name = key.to8Bit(true);
        const std::string_view host = host_name_of_vorbis_key(name);
        const std::string field = host.empty() ? lower_ascii(name) : std::string(host);
        // Keys are unique, so a field already present was read under another key: a file
        // carrying a field and its alias (TRACKTOTAL and TOTALTRACKS) usually repeats the
        // value, which is kept once so that a rewrite does not double it.
        const bool from_alias = tags.find_field(field.c_str()) != tag_record::npos;
        for (const TagLib::String& value : values) {
            const std::string text = value.to8Bit(true);
            if (from_alias && has_value(tags, field, text)) continue;
            tags.add_tag_value(field.c_str(), text);
        }
    }
    return in_table_order(tags);
}

void write_vorbis_comment(TagLib::Ogg::XiphComment& comment, const tag_record& tags) {
    comment.removeAllFields();
    for (std::size_t i = 0; i < tags.field_count(); ++i) {
        const field_names* known = find_host_field(tags.field_name(i));
        if (known && !known->written) continue;
        const TagLib::String key(known ? std::string(known->vorbis) : upper_ascii(tags.field_name(i)), TagLib::String::UTF8);
        // A name the format cannot hold ('=' or bytes outside printable ASCII) is left out.
        if (!TagLib::Ogg::XiphComment::checkKey(key)) continue;
        for (std::size_t v = 0; v < tags.value_count(i); ++v)
            comment.addField(key, TagLib::String(tags.value(i, v), TagLib::String::UTF8), false);
    }
}

} // namespace linux_audio
