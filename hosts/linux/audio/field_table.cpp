#include "field_table.h"

#include <algorithm>
#include <string>
#include <vector>

#include <tunehall/text.h>

namespace linux_audio {

namespace {

// Names other writers use for fields of the table; accepted when reading only.
struct vorbis_alias {
    std::string_view key;
    std::string_view host;
};
constexpr vorbis_alias vorbis_aliases[] = {
    {"TOTALTRACKS", "totaltracks"},
    {"TOTALDISCS", "totaldiscs"},
    {"ALBUM ARTIST", "album artist"},
    {"DESCRIPTION", "comment"},
};

// Track and disc numbers share one frame (ID3v2) or one atom (MP4) with their totals, so those
// formats handle them as pairs, never through a one-name lookup.
bool shares_a_pair(const field_names& f) { return f.id3v2 == "TRCK" || f.id3v2 == "TPOS"; }

std::size_t table_rank(std::string_view host_name) {
    for (std::size_t i = 0; i < std::size(field_table); ++i)
        if (tunehall::ascii_iequals(field_table[i].host, host_name)) return i;
    return std::size(field_table);
}

} // namespace

const field_names* find_host_field(std::string_view host_name) {
    const std::size_t rank = table_rank(host_name);
    return rank < std::size(field_table) ? &field_table[rank] : nullptr;
}

std::string_view host_name_of_vorbis_key(std::string_view key) {
    for (const field_names& f : field_table)
        if (tunehall::ascii_iequals(f.vorbis, key)) return f.host;
    for (const vorbis_alias& a : vorbis_aliases)
        if (tunehall::ascii_iequals(a.key, key)) return a.host;
    return {};
}

std::string_view host_name_of_id3v2_frame(std::string_view frame_id) {
    for (const field_names& f : field_table)
        if (!shares_a_pair(f) && f.id3v2 == frame_id) return f.host;
    return {};
}

std::string_view host_name_of_mp4_atom(std::string_view atom) {
    for (const field_names& f : field_table)
        if (!shares_a_pair(f) && !f.mp4.empty() && f.mp4 == atom) return f.host;
    return {};
}

std::string lower_ascii(std::string text) {
    for (char& c : text)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
    return text;
}

std::string upper_ascii(std::string text) {
    for (char& c : text)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 32);
    return text;
}

field_order field_order_of(std::string_view lower_name) { return {table_rank(lower_name), lower_name}; }

tag_record in_table_order(const tag_record& tags) {
    // The lower-case names and the order of each field, worked out once, not per comparison.
    std::vector<std::string> names;
    names.reserve(tags.field_count());
    for (std::size_t i = 0; i < tags.field_count(); ++i) names.push_back(lower_ascii(tags.field_name(i)));
    std::vector<std::pair<field_order, std::size_t>> order;
    order.reserve(names.size());
    for (std::size_t i = 0; i < names.size(); ++i) order.emplace_back(field_order_of(names[i]), i);
    std::stable_sort(order.begin(), order.end(), [](const auto& a, const auto& b) { return a.first < b.first; });

    tag_record out;
    for (const auto& [unused, i] : order) {
        if (tags.value_count(i) == 0) continue;
        const std::size_t index = out.set_field(tags.field_name(i).c_str(), tags.value(i, 0));
        for (std::size_t v = 1; v < tags.value_count(i); ++v) out.add_value(index, tags.value(i, v));
    }
    return out;
}

} // namespace linux_audio
