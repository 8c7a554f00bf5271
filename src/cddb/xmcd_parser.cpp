#include "cddb/xmcd_parser.h"

#include <cstdint>
#include <string>

#include <tunehall/exceptions.h>
#include <tunehall/shared.h>

namespace {

// Real discs have at most 99 tracks. A track number far beyond that can only be garbage, and
// growing the record to reach it would allocate without bound.
constexpr std::uint32_t max_track_number = 9999;

std::string_view skip_blanks(std::string_view text) {
    std::size_t i = 0;
    while (i < text.size() && (text[i] == ' ' || text[i] == '\t')) ++i;
    return text.substr(i);
}

bool is_digit(char c) { return c >= '0' && c <= '9'; }

// The number a C atoi reads from the start of `text`; out-of-range values wrap instead of being
// undefined.
std::uint32_t leading_number(std::string_view text) {
    std::size_t i = 0;
    while (i < text.size() && (text[i] == ' ' || (text[i] >= '\t' && text[i] <= '\r'))) ++i;
    bool negative = false;
    if (i < text.size() && (text[i] == '+' || text[i] == '-')) negative = text[i++] == '-';
    std::uint32_t value = 0;
    for (; i < text.size() && is_digit(text[i]); ++i) value = value * 10 + static_cast<std::uint32_t>(text[i] - '0');
    return negative ? 0u - value : value;
}

// Case-insensitive prefix test on the keyword's length. The keywords are ASCII, so comparing
// that many bytes matches exactly the lines whose first characters spell the keyword.
bool starts_with_nocase(std::string_view text, std::string_view keyword) {
    if (text.size() < keyword.size()) return false;
    return stricmp_utf8_ex(text.data(), keyword.size(), keyword.data(), keyword.size()) == 0;
}

bool has_prefix(std::string_view text, std::string_view prefix) { return text.substr(0, prefix.size()) == prefix; }

[[noreturn]] void unrecognized(std::string_view line) {
    std::string text = "CDDB: Unrecognized keyword '";
    text.append(line);
    text += '\'';
    throw tunehall_io::exception_io_data(text);
}

} // namespace

void xmcd_parser::feed_line(std::string_view line) {
    if (line.empty()) return;
    if (line.front() == '#')
        comment_line(line);
    else
        keyword_line(line);
}

void xmcd_parser::comment_line(std::string_view line) {
    switch (state_) {
    case state::before_signature:
        if (!has_prefix(line, "# xmcd")) throw tunehall_io::exception_io_data("CDDB: Signature mismatch");
        state_ = state::header;
        return;
    case state::after_submitted:
        return;
    case state::frame_offsets:
    case state::header:
        break;
    }
    std::string_view text = skip_blanks(line.substr(1));
    if (text.empty()) return;
    if (state_ == state::frame_offsets) {
        if (is_digit(text.front())) {
            std::size_t track = record_.get_track_count();
            record_.set_track_count(track + 1);
            record_.set_track_offset(track, leading_number(text));
            return;
        }
        state_ = state::header;
    }
    header_comment(text);
}

void xmcd_parser::header_comment(std::string_view text) {
    constexpr std::string_view offsets = "Track frame offsets:";
    constexpr std::string_view length = "Disc length:";
    constexpr std::string_view revision = "Revision:";
    constexpr std::string_view submitted = "Submitted via:";
    if (starts_with_nocase(text, offsets)) {
        state_ = state::frame_offsets;
    } else if (starts_with_nocase(text, length)) {
        record_.set_disc_length(leading_number(skip_blanks(text.substr(length.size()))));
    } else if (starts_with_nocase(text, revision)) {
        record_.set_revision(leading_number(skip_blanks(text.substr(revision.size()))));
    } else if (starts_with_nocase(text, submitted)) {
        std::string_view value = skip_blanks(text.substr(submitted.size()));
        record_.set_field(disc_record::submitted_via, value.data(), value.size());
        // What follows the header is commentary that may repeat the keywords above.
        state_ = state::after_submitted;
    }
}

void xmcd_parser::keyword_line(std::string_view line) {
    struct disc_keyword {
        std::string_view prefix;
        disc_record::field field;
    };
    static constexpr disc_keyword disc_keywords[] = {
        {"DISCID=", disc_record::discid}, {"DTITLE=", disc_record::dtitle}, {"DYEAR=", disc_record::dyear},
        {"DGENRE=", disc_record::dgenre}, {"EXTD=", disc_record::extd},
    };
    for (const auto& k : disc_keywords) {
        if (has_prefix(line, k.prefix)) {
            std::string_view value = line.substr(k.prefix.size());
            record_.append_field(k.field, value.data(), value.size(), true);
            return;
        }
    }

    struct track_keyword {
        std::string_view name;
        disc_record::track_field field;
    };
    static constexpr track_keyword track_keywords[] = {{"TTITLE", disc_record::ttitle}, {"EXTT", disc_record::extt}};
    for (const auto& k : track_keywords) {
        if (!has_prefix(line, k.name)) continue;
        std::size_t i = k.name.size();
        std::uint32_t track = 0;
        std::size_t digits_start = i;
        for (; i < line.size() && is_digit(line[i]); ++i) {
            track = track * 10 + static_cast<std::uint32_t>(line[i] - '0');
            if (track > max_track_number) unrecognized(line);
        }
        if (i == digits_start || i == line.size() || line[i] != '=') unrecognized(line);
        if (record_.get_track_count() < track + 1) record_.set_track_count(track + 1);
        std::string_view value = line.substr(i + 1);
        record_.append_track_field(track, k.field, value.data(), value.size(), true);
        return;
    }

    if (has_prefix(line, "PLAYORDER=")) return;
    unrecognized(line);
}

artist_and_album split_dtitle(std::string_view dtitle) {
    std::size_t at = dtitle.find(" / ");
    if (at == std::string_view::npos) return {dtitle, dtitle};
    return {dtitle.substr(0, at), dtitle.substr(at + 3)};
}

void finish_disc_record(disc_record& record) {
    std::string_view artist = split_dtitle(record.get_field(disc_record::dtitle)).artist;
    auto is = [artist](const char* name) {
        return stricmp_utf8_ex(artist.data(), artist.size(), name, TUNEHALL_NUL_TERMINATED) == 0;
    };
    bool various = is("various") || is("various artists");
    for (std::size_t t = 0, n = record.get_track_count(); !various && t < n; ++t) {
        std::string_view title = record.get_track_field(t, disc_record::ttitle);
        various = title.find(" / ") != std::string_view::npos;
    }
    record.set_various_artists(various);
}
