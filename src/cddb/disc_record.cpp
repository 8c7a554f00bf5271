#include "cddb/disc_record.h"

#include <cstring>

namespace {

// The bytes a caller meant: `length` of them, or fewer when a NUL comes first.
std::size_t bounded_length(const char* text, std::size_t length) {
    if (length == disc_record::npos) return std::strlen(text);
    if (length == 0) return 0;
    const void* nul = std::memchr(text, '\0', length);
    return nul ? static_cast<std::size_t>(static_cast<const char*>(nul) - text) : length;
}

void append_value(std::string& out, const char* text, std::size_t length, bool unescape) {
    if (unescape)
        append_unescaped(out, text, length);
    else
        out.append(text, bounded_length(text, length));
}

} // namespace

void append_unescaped(std::string& out, const char* text, std::size_t length) {
    const char* p = text;
    const char* end = text + bounded_length(text, length);
    while (p < end) {
        const char* slash = static_cast<const char*>(std::memchr(p, '\\', static_cast<std::size_t>(end - p)));
        if (!slash) {
            out.append(p, end);
            return;
        }
        out.append(p, slash);
        if (slash + 1 == end) return;
        switch (slash[1]) {
        case '\\': out += '\\'; break;
        case 'n': out += '\n'; break;
        case 't': out += '\t'; break;
        // An escape the format does not define ends the value: what follows cannot be trusted
        // to mean what it says.
        default: return;
        }
        p = slash + 2;
    }
}

disc_record::disc_record(const disc_record& other)
    : tracks_(other.tracks_.size()), various_artists_(other.various_artists_) {
    for (unsigned i = 0; i < field_count; ++i) fields_[i] = other.fields_[i];
    for (std::size_t t = 0; t < tracks_.size(); ++t)
        for (unsigned f = 0; f < track_field_count; ++f) tracks_[t].fields[f] = other.tracks_[t].fields[f];
}

disc_record& disc_record::operator=(const disc_record& other) {
    if (this != &other) *this = disc_record(other);
    return *this;
}

void disc_record::set_field(unsigned index, const char* text, std::size_t length) {
    fields_[index].assign(text, bounded_length(text, length));
}

void disc_record::append_field(unsigned index, const char* text, std::size_t length, bool unescape) {
    append_value(fields_[index], text, length, unescape);
}

void disc_record::set_track_count(std::size_t count) { tracks_.resize(count); }

void disc_record::set_track_field(std::size_t track, unsigned which, const char* text, std::size_t length) {
    tracks_[track].fields[which].assign(text, bounded_length(text, length));
}

void disc_record::append_track_field(std::size_t track, unsigned which, const char* text, std::size_t length,
                                     bool unescape) {
    append_value(tracks_[track].fields[which], text, length, unescape);
}
