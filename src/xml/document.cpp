// The document level: the byte order mark, the "<?xml" declaration and the document element.

#include <map>

#include "xml/text_bytes.h"
#include "xml/xml_parser.h"

namespace ZR::xmlParser {

namespace {

using detail::ascii_iequals;
using detail::is_blank;

bool is_letter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool is_digit(char c) { return c >= '0' && c <= '9'; }

std::size_t skip_blanks(std::string_view text, std::size_t i) {
    while (i < text.size() && is_blank(text[i])) ++i;
    return i;
}

} // namespace

void prepare_document(std::string_view& text) {
    if (text.substr(0, 3) == "\xEF\xBB\xBF") text.remove_prefix(3);
    constexpr std::string_view opener = "<?xml";
    // "<?xml-stylesheet" and the like are not the declaration.
    if (text.substr(0, opener.size()) != opener || text.size() == opener.size() || !is_blank(text[opener.size()]))
        return;

    std::map<std::string, std::string> pseudo_attributes;
    std::size_t i = opener.size();
    for (;;) {
        i = skip_blanks(text, i);
        if (i == text.size()) throw error();
        if (text[i] == '?') break;
        if (!is_letter(text[i])) throw error();
        const std::size_t name_start = i;
        while (i < text.size() && (is_letter(text[i]) || is_digit(text[i]))) ++i;
        std::string name(text.substr(name_start, i - name_start));
        i = skip_blanks(text, i);
        if (i == text.size() || text[i] != '=') throw error();
        i = skip_blanks(text, i + 1);
        if (i == text.size() || (text[i] != '"' && text[i] != '\'')) throw error();
        const std::size_t close = text.find(text[i], i + 1);
        if (close == std::string_view::npos) throw error();
        pseudo_attributes[name] = decode_entities(text.data() + i + 1, close - i - 1);
        i = close + 1;
    }
    if (i + 1 == text.size() || text[i + 1] != '>') throw error();
    text.remove_prefix(skip_blanks(text, i + 2));

    // Nothing is transcoded, so only the encodings the answers really use are let through.
    if (auto encoding = pseudo_attributes.find("encoding"); encoding != pseudo_attributes.end())
        if (!ascii_iequals(encoding->second, "utf-8") && !ascii_iequals(encoding->second, "utf-16"))
            throw error("Heathen character encodings not supported");
}

element::element(const char* text, std::size_t length) {
    std::size_t begin = 0;
    while (begin < length && is_blank(text[begin])) ++begin;
    while (length > begin && is_blank(text[length - 1])) --length;
    content.assign(text + begin, length - begin);
}

} // namespace ZR::xmlParser
