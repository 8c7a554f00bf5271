#pragma once
// A small reader for trusted web-service answers. It builds no tree: an element is its raw
// content text plus the namespace declarations and attributes in force, and every lookup
// re-scans that text. Answers are one disc's releases, so re-scanning costs little and keeps the
// reader short; a caller that asks one answer many things uses element_index.h, which answers
// the same lookups from one pass. Every failure is thrown; a lookup that throws leaves its output
// untouched.

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <list>
#include <map>
#include <string>
#include <string_view>

#include "xml/zr_exceptions.h"

namespace ZR::xmlParser {

// Every syntax or lookup failure ("XML error"), and the refusal of a foreign encoding.
class error : public invalid_input {
public:
    error() : invalid_input("XML error") {}
    explicit error(const std::string& text) : invalid_input(text) {}
};

// The namespace every lookup of this program looks in: the web service's metadata namespace.
inline constexpr std::string_view musicbrainz_namespace = "http://musicbrainz.org/ns/mmd-2.0#";

// Prefix -> namespace URI; the default namespace sits under the empty prefix.
using namespace_map = std::map<std::string, std::string>;
// Attribute name as written (prefix included) -> value with entities decoded.
using attribute_map = std::map<std::string, std::string>;

struct element {
    namespace_map namespaces;  // the declarations in force inside the element
    attribute_map attributes;
    std::string content;       // between the end of the start tag and the end tag, raw

    element() = default;
    // A document: empty maps, and `text` without leading and trailing bytes 0..32.
    element(const char* text, std::size_t length);
};

// What a scan of an element's children reports, in document order. The four operations keep
// this order (their slots); handlers live on the stack and are never deleted through this class.
class handler {
public:
    // Once for every direct child element.
    virtual void on_element(const namespace_map& namespaces, std::string_view uri, std::string_view local_name,
                            const attribute_map& attributes, const char* content, std::size_t length) = 0;
    // Character data between child elements, raw.
    virtual void on_text(const char* text, std::size_t length) = 0;
    // Hooks for handlers that want to skip elements unseen; the scan still parses everything.
    virtual bool skip_element(std::string_view name) = 0;
    virtual bool skip_content(std::string_view name) = 0;

protected:
    ~handler() = default;
};

// Skips a UTF-8 byte order mark and an "<?xml ...?>" declaration (with the blanks after it);
// refuses an encoding other than UTF-8 or UTF-16 with "Heathen character encodings not
// supported". `text` is narrowed in place.
void prepare_document(std::string_view& text);

// Reports the direct children of an element whose content is `content` and in which
// `namespaces` are in force. Nesting deeper than max_depth raises "XML error".
void scan_children(handler& h, const namespace_map& namespaces, std::string_view content);
inline constexpr unsigned max_depth = 256;

// The one direct child named `name` in namespace `uri`; "XML error" when there is none or more
// than one. An empty `uri` matches by local name alone.
element find_child(const element& parent, std::string_view name, std::string_view uri = musicbrainz_namespace);
// The same, but false (and `out` untouched) when there is none.
bool try_find_child(const element& parent, std::string_view name, element& out,
                    std::string_view uri = musicbrainz_namespace);
// Every direct child named `name`, in document order. With `abort`, a set flag ends the scan
// with ZR::user_abort.
std::list<element> find_children(const element& parent, std::string_view name,
                                 std::string_view uri = musicbrainz_namespace,
                                 const std::atomic<bool>* abort = nullptr);
// The element's character data, entities decoded; "XML error" when it has child elements.
std::string text_of(const element& e);

// Resolves the five XML entities, "nbsp" and numeric references ("&#65;", "&#x41;", "&65;").
std::string decode_entities(const char* text, std::size_t length);

// Decodes one UTF-8 sequence (up to six bytes) at `text`: its length, or 0 when it is malformed
// or runs past `length`.
std::size_t utf8_decode_char(const char* text, std::size_t length, std::uint32_t& code_point);
// Writes `code_point` as UTF-8 (1 to 6 bytes) into `out`; returns the length, 0 above 0x7FFFFFFF.
std::size_t utf8_encode_char(std::uint32_t code_point, char out[6]);

} // namespace ZR::xmlParser
