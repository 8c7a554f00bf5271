#pragma once
// The byte-level steps of every scan: finding tags, stepping over comments, CDATA sections and
// declarations, reading a tag's name and attributes, and stepping over an element's content to
// its end tag. The scan of one element's children and the element index both run on these, so
// they see the same structure and fail on the same input.

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "xml/text_bytes.h"
#include "xml/xml_parser.h"

namespace ZR::xmlParser::detail {

inline constexpr std::size_t none = std::string_view::npos;

// The first `c` at or after `from`, or `none`.
inline std::size_t find_byte(std::string_view text, std::size_t from, char c) {
    if (from >= text.size()) return none;
    const void* found = std::memchr(text.data() + from, c, text.size() - from);
    return found ? static_cast<std::size_t>(static_cast<const char*>(found) - text.data()) : none;
}

inline std::string_view trim_end(std::string_view s) {
    while (!s.empty() && is_blank(s.back())) s.remove_suffix(1);
    return s;
}

// `text[at]` is "<". When a comment, CDATA section or declaration opens there, the position
// after its end; `none` when a tag opens there.
std::size_t skip_markup(std::string_view text, std::size_t at);

// The first byte at or after `from` that is `a` or `b`, or text.size(). Tag bytes make up most
// of an answer; looking at eight of them per step instead of one is what keeps a pass cheap.
inline std::size_t find_either(std::string_view text, std::size_t from, char a, char b) {
    const char* const p = text.data();
    const std::size_t n = text.size();
    std::size_t i = from;
    if constexpr (std::endian::native == std::endian::little) {
        constexpr std::uint64_t ones = 0x0101010101010101u, highs = 0x8080808080808080u;
        const std::uint64_t as = ones * static_cast<unsigned char>(a), bs = ones * static_cast<unsigned char>(b);
        for (; i + 8 <= n; i += 8) {
            std::uint64_t word;
            std::memcpy(&word, p + i, 8);
            const std::uint64_t x = word ^ as, y = word ^ bs;
            // A byte of x or y is zero where the text has a or b; the lowest flag marks the first.
            const std::uint64_t found = (((x - ones) & ~x) | ((y - ones) & ~y)) & highs;
            if (found) return i + static_cast<std::size_t>(std::countr_zero(found)) / 8;
        }
    }
    for (; i < n; ++i)
        if (p[i] == a || p[i] == b) return i;
    return n;
}

// Position of the ">" that ends the tag opening at `at`: the first one outside double quotes.
inline std::size_t tag_end(std::string_view text, std::size_t at) {
    bool quoted = false;
    for (std::size_t i = at + 1;;) {
        i = find_either(text, i, '>', '"');
        if (i == text.size()) throw error();
        if (text[i] == '>' && !quoted) return i;
        if (text[i] == '"') quoted = !quoted;
        ++i;
    }
}

// The next "<" at or after `from`, or `none`. Tags mostly follow each other directly.
inline std::size_t next_lt(std::string_view text, std::size_t from) {
    if (from < text.size() && text[from] == '<') return from;
    return find_byte(text, from, '<');
}

// The length of the element name at the start of `tag`: up to the first blank.
inline std::size_t name_length(std::string_view tag) {
    std::size_t n = 0;
    while (n < tag.size() && !is_blank(tag[n])) ++n;
    return n;
}

// The text of an end tag (between "</" and ">") closes the element named `name`: blanks before
// ">" do not count, and case does not matter.
inline bool closes(std::string_view end_tag, std::string_view name) {
    end_tag = trim_end(end_tag);
    if (end_tag.size() != name.size()) return false;
    // Names are a few bytes long: compared in place, case folded only when they differ.
    for (std::size_t i = 0; i < name.size(); ++i)
        if (end_tag[i] != name[i]) return ascii_iequals(end_tag, name);
    return true;
}

// Calls `take(name, raw value)` for each name="value" pair after a tag's element name, double
// quotes only; the value is not yet decoded.
template <typename Take>
void for_each_attribute(std::string_view text, Take take) {
    std::size_t i = 0;
    for (;;) {
        while (i < text.size() && is_blank(text[i])) ++i;
        if (i == text.size()) return;
        const std::size_t equals = find_byte(text, i, '=');
        if (equals == none) throw error();
        const std::string_view name = trim_end(text.substr(i, equals - i));
        i = equals + 1;
        while (i < text.size() && is_blank(text[i])) ++i;
        if (name.empty() || i == text.size() || text[i] != '"') throw error();
        const std::size_t close = find_byte(text, i + 1, '"');
        if (close == none) throw error();
        take(name, text.substr(i + 1, close - i - 1));
        i = close + 1;
    }
}

struct span {
    std::size_t content_end;  // where the end tag's "<" is
    std::size_t after;        // just past the end tag's ">"
};

// Told nothing: the scan of one element's children only needs where each child ends.
struct no_recorder {
    void on_start(std::size_t, std::size_t) {}
    void on_empty(std::size_t, std::size_t) {}
    void on_end(std::size_t) {}
};

// Steps over the content of the element named `name` that starts at `from`, to just past its end
// tag. Elements nested in it are told to `recorder` as they are met: on_start(lt, gt) for a start
// tag, on_empty(lt, gt) for a self-closing one, on_end(lt) for a nested element's end tag. Nesting
// deeper than max_depth, a mismatched end tag or the end of the text throws "XML error".
template <typename Recorder>
span step_over(std::string_view text, std::size_t from, std::string_view name, Recorder& recorder) {
    // The names still waiting for their end tags; plain pairs, so nothing is initialised per call.
    struct open_name {
        const char* data;
        std::size_t size;
    };
    open_name open[max_depth];
    std::size_t depth = 0;
    open[depth++] = {name.data(), name.size()};
    std::size_t pos = from;
    for (;;) {
        const std::size_t lt = next_lt(text, pos);
        if (lt == none || lt + 1 == text.size()) throw error();
        const char kind = text[lt + 1];
        if (kind == '!') {
            if (const std::size_t after = skip_markup(text, lt); after != none) {
                pos = after;
                continue;
            }
        }
        const std::size_t gt = tag_end(text, lt);
        pos = gt + 1;
        if (kind == '/') {
            const open_name& innermost = open[depth - 1];
            if (!closes(text.substr(lt + 2, gt - lt - 2), {innermost.data, innermost.size})) throw error();
            if (--depth == 0) return {lt, gt + 1};
            recorder.on_end(lt);
            continue;
        }
        if (text[gt - 1] == '/') {  // self-closing: nothing nested to step over
            recorder.on_empty(lt, gt);
            continue;
        }
        const std::size_t length = name_length(text.substr(lt + 1, gt - lt - 1));
        if (length == 0 || depth >= max_depth) throw error();
        open[depth++] = {text.data() + lt + 1, length};
        recorder.on_start(lt, gt);
    }
}

} // namespace ZR::xmlParser::detail
