// Entity and character-reference decoding on arbitrary bytes, directly and the two ways answers
// reach it: as an element's text and as an attribute value. Besides "no crash" it checks what
// the decoding promises:
// - its output is well-formed UTF-8 (six-byte form), each sequence the shortest for its value;
// - text without "&" comes out unchanged when it is well-formed and is refused otherwise;
// - any well-formed text, every character written as a reference, decodes back to itself;
// - element text and attribute values decode exactly as the decoder alone does.
// A refusal must be the reader's "XML error"; any other exception ends the run as a crash.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

#include "fuzz_checks.h"
#include "xml/xml_parser.h"

namespace {

namespace xml = ZR::xmlParser;

// Whether every sequence decodes, and each re-encodes to the very bytes it came from (so that
// no overlong form slips through).
bool well_formed(std::string_view text) {
    std::size_t i = 0;
    while (i < text.size()) {
        std::uint32_t code_point;
        const std::size_t size = xml::utf8_decode_char(text.data() + i, text.size() - i, code_point);
        if (size == 0) return false;
        char encoded[6];
        require(xml::utf8_encode_char(code_point, encoded) == size && text.compare(i, size, encoded, size) == 0,
                "a decoded character encodes back to the bytes it was read from");
        i += size;
    }
    return true;
}

// The decoding's result, or nothing when it refused the text.
template <typename Decode>
std::optional<std::string> outcome(Decode decode) {
    try {
        return decode();
    } catch (const xml::error&) {
        return std::nullopt;
    }
}

// `text` with every character as a reference; the form rotates through the ones the decoder
// reads: decimal, hexadecimal in either case, with leading zeros, without "#", and by name.
std::string as_references(std::string_view text) {
    static constexpr struct {
        std::uint32_t code_point;
        const char* name;
    } names[] = {{'&', "amp"}, {'<', "lt"}, {'>', "gt"}, {'\'', "apos"}, {'"', "quot"}, {0xA0, "nbsp"}};
    std::string out;
    std::size_t n = 0;
    for (std::size_t i = 0; i < text.size(); ++n) {
        std::uint32_t code_point = 0;
        const std::size_t size = xml::utf8_decode_char(text.data() + i, text.size() - i, code_point);
        char reference[32];
        switch (n % 6) {
        case 0: std::snprintf(reference, sizeof reference, "&#%u;", static_cast<unsigned>(code_point)); break;
        case 1: std::snprintf(reference, sizeof reference, "&#x%x;", static_cast<unsigned>(code_point)); break;
        case 2: std::snprintf(reference, sizeof reference, "&#x%X;", static_cast<unsigned>(code_point)); break;
        case 3: std::snprintf(reference, sizeof reference, "&#000%u;", static_cast<unsigned>(code_point)); break;
        case 4: std::snprintf(reference, sizeof reference, "&%u;", static_cast<unsigned>(code_point)); break;
        default:
            std::snprintf(reference, sizeof reference, "&#%u;", static_cast<unsigned>(code_point));
            for (const auto& entity : names)
                if (entity.code_point == code_point) std::snprintf(reference, sizeof reference, "&%s;", entity.name);
        }
        out += reference;
        i += size;
    }
    return out;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const bool input_well_formed = well_formed(text);

    const std::optional<std::string> decoded = outcome([&] { return xml::decode_entities(text.data(), text.size()); });
    if (decoded) require(well_formed(*decoded), "decoded text is well-formed UTF-8");
    if (text.find('&') == std::string_view::npos) {
        require(decoded.has_value() == input_well_formed, "text without references is refused only when malformed");
        require(!decoded || *decoded == text, "text without references comes out unchanged");
    }

    if (input_well_formed) {
        const std::string references = as_references(text);
        const std::optional<std::string> back =
            outcome([&] { return xml::decode_entities(references.data(), references.size()); });
        require(back && *back == text, "every character written as a reference decodes back to itself");
    }

    // As an element's text: without "<" the whole content is one piece of character data.
    if (text.find('<') == std::string_view::npos) {
        xml::element e;
        e.content = text;
        require(outcome([&] { return xml::text_of(e); }) == decoded, "element text decodes as the decoder does");
    }

    // As an attribute value, which ends at the next double quote.
    if (text.find('"') == std::string_view::npos) {
        xml::element document;
        document.content = "<a v=\"" + std::string(text) + "\"/>";
        const std::optional<std::string> value = outcome([&] {
            return xml::find_child(document, "a", "").attributes.at("v");
        });
        require(value == decoded, "an attribute value decodes as the decoder does");
    }
    return 0;
}
