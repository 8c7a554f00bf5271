#include "musicbrainz/release_text.h"

#include "musicbrainz/parse_unsigned.h"

std::string join_artists(const std::vector<std::string>& artists) {
    std::string text;
    for (const std::string& a : artists) {
        if (!text.empty()) text += "; ";
        text += a;
    }
    return text;
}

std::vector<std::string> split_artists(std::string_view text) {
    std::vector<std::string> artists;
    std::size_t start = 0;
    for (;;) {
        const std::size_t end = text.find(';', start);
        std::string_view piece = text.substr(start, end == std::string_view::npos ? std::string_view::npos : end - start);
        if (!piece.empty()) artists.emplace_back(piece);
        if (end == std::string_view::npos) break;
        start = end + 1;
        while (start < text.size() && (text[start] == ' ' || text[start] == '\t')) ++start;
    }
    return artists;
}

std::string disc_text(const musicbrainz_release& release) {
    return std::to_string(release.disc_number) + "/" + std::to_string(release.total_discs);
}

void read_disc_text(std::string_view text, musicbrainz_release& release) {
    const std::size_t slash = text.find('/');
    const std::string_view number = text.substr(0, slash);
    const std::string_view total = slash == std::string_view::npos ? std::string_view() : text.substr(slash + 1);
    // Both are read before either is stored: a bad total leaves the release as it was.
    const std::uint32_t n = parse_unsigned(number.data(), number.size());
    const std::uint32_t m = parse_unsigned(total.data(), total.size());
    release.disc_number = n;
    release.total_discs = m;
}
