#include "album_order.h"

#include <algorithm>
#include <numeric>
#include <optional>
#include <tuple>

namespace linux_audio {

namespace {

bool is_digit(char c) { return c >= '0' && c <= '9'; }

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }

// -1, 0 or 1 for two runs of digits by the numbers they stand for.
int compare_numbers(std::string_view a, std::string_view b) {
    while (a.size() > 1 && a.front() == '0') a.remove_prefix(1);
    while (b.size() > 1 && b.front() == '0') b.remove_prefix(1);
    if (a.size() != b.size()) return a.size() < b.size() ? -1 : 1;
    const int c = a.compare(b);
    return c < 0 ? -1 : (c > 0 ? 1 : 0);
}

std::string_view digit_run(std::string_view s, std::size_t from) {
    std::size_t end = from;
    while (end < s.size() && is_digit(s[end])) ++end;
    return s.substr(from, end - from);
}

// The number that a "tracknumber" or "discnumber" value starts with ("7", "07", "7/12").
std::optional<unsigned long> leading_number(const tag_record& tags, const char* name) {
    const char* value = tags.first_value(name);
    if (!value) return std::nullopt;
    const std::string_view text = value;
    const std::string_view digits = digit_run(text, 0);
    if (digits.empty() || digits.size() > 9) return std::nullopt;
    if (digits.size() != text.size() && text[digits.size()] != '/') return std::nullopt;
    return std::stoul(std::string(digits));
}

} // namespace

bool natural_less(std::string_view a, std::string_view b) {
    std::size_t i = 0, j = 0;
    while (i < a.size() && j < b.size()) {
        if (is_digit(a[i]) && is_digit(b[j])) {
            const std::string_view x = digit_run(a, i), y = digit_run(b, j);
            if (const int c = compare_numbers(x, y)) return c < 0;
            i += x.size();
            j += y.size();
        } else {
            if (lower(a[i]) != lower(b[j])) return lower(a[i]) < lower(b[j]);
            ++i;
            ++j;
        }
    }
    if ((a.size() - i) != (b.size() - j)) return (a.size() - i) < (b.size() - j);
    // Names equal in this order ("01" and "1", "a" and "A") still need a fixed order.
    return a < b;
}

std::vector<std::size_t> album_order(const std::vector<std::string>& names, const std::vector<tag_record>& tags) {
    std::vector<std::size_t> order(names.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    auto by_name = [&names](std::size_t x, std::size_t y) { return natural_less(names[x], names[y]); };

    std::vector<std::optional<unsigned long>> track(names.size()), disc(names.size());
    for (std::size_t i = 0; i < names.size(); ++i) {
        track[i] = leading_number(tags[i], "tracknumber");
        disc[i] = leading_number(tags[i], "discnumber");
    }
    const bool all_tracks = std::all_of(track.begin(), track.end(), [](auto& n) { return n.has_value(); });
    const bool all_discs = std::all_of(disc.begin(), disc.end(), [](auto& n) { return n.has_value(); });
    if (!all_tracks) {
        std::sort(order.begin(), order.end(), by_name);
        return order;
    }
    std::sort(order.begin(), order.end(), [&](std::size_t x, std::size_t y) {
        const auto kx = std::make_tuple(all_discs ? *disc[x] : 0ul, *track[x]);
        const auto ky = std::make_tuple(all_discs ? *disc[y] : 0ul, *track[y]);
        if (kx != ky) return kx < ky;
        return by_name(x, y);
    });
    return order;
}

} // namespace linux_audio
