// The scan of one element's direct children, the core every lookup runs on. Nested elements are
// not reported, only stepped over by finding their end tags; that recursion is bounded so that a
// hostile answer cannot exhaust the worker thread's stack.

#include "xml/text_bytes.h"
#include "xml/xml_parser.h"

namespace ZR::xmlParser {

namespace {

using detail::ascii_iequals;
using detail::is_blank;

constexpr std::size_t none = std::string_view::npos;

std::string_view trim_end(std::string_view s) {
    while (!s.empty() && is_blank(s.back())) s.remove_suffix(1);
    return s;
}

// `text[at]` is "<". When a comment, CDATA section or declaration opens there, the position
// after its end; `none` when a tag opens there. CDATA content is dropped: the answers carry no
// data in it.
std::size_t skip_markup(std::string_view text, std::size_t at) {
    struct kind {
        std::string_view opener, closer;
    };
    static constexpr kind kinds[] = {{"<!--", "-->"}, {"<![CDATA[", "]]>"}, {"<!", ">"}};
    for (const kind& k : kinds) {
        // An opener counts only with at least one byte after it.
        if (text.size() - at <= k.opener.size() || text.compare(at, k.opener.size(), k.opener) != 0) continue;
        std::size_t end = text.find(k.closer, at + k.opener.size());
        if (end == none) throw error();
        return end + k.closer.size();
    }
    return none;
}

// Position of the ">" that ends the tag opening at `at`; a ">" inside double quotes belongs to
// an attribute value.
std::size_t tag_end(std::string_view text, std::size_t at) {
    bool quoted = false;
    for (std::size_t i = at + 1; i < text.size(); ++i) {
        if (text[i] == '"') quoted = !quoted;
        else if (text[i] == '>' && !quoted) return i;
    }
    throw error();
}

// The next markup "<" at or after `from` that is a tag, with its end; comments, CDATA and
// declarations on the way are skipped. False when the text ends first.
bool next_tag(std::string_view text, std::size_t& from, std::size_t& lt, std::size_t& gt) {
    for (;;) {
        lt = text.find('<', from);
        if (lt == none) return false;
        if (lt + 1 == text.size()) throw error();
        std::size_t after = skip_markup(text, lt);
        if (after == none) break;
        from = after;
    }
    gt = tag_end(text, lt);
    return true;
}

struct span {
    std::size_t content_end;  // where the end tag's "<" is
    std::size_t after;        // just past the end tag's ">"
};

// Finds the end tag of the element named `name` whose content starts at `from`. `depth` is the
// element's nesting level below the scanned content.
span find_end_tag(std::string_view text, std::size_t from, std::string_view name, unsigned depth) {
    std::size_t pos = from, lt, gt;
    while (next_tag(text, pos, lt, gt)) {
        if (text[lt + 1] == '/') {
            if (!ascii_iequals(trim_end(text.substr(lt + 2, gt - lt - 2)), name)) throw error();
            return {lt, gt + 1};
        }
        pos = gt + 1;
        if (text[gt - 1] == '/') continue;  // self-closing: nothing nested to step over
        std::string_view tag = text.substr(lt + 1, gt - lt - 1);
        std::size_t name_end = 0;
        while (name_end < tag.size() && !is_blank(tag[name_end])) ++name_end;
        if (name_end == 0 || depth >= max_depth) throw error();
        pos = find_end_tag(text, pos, tag.substr(0, name_end), depth + 1).after;
    }
    throw error();
}

// Attributes after the element name: name="value" pairs, double quotes only.
attribute_map read_attributes(std::string_view text) {
    attribute_map attributes;
    std::size_t i = 0;
    for (;;) {
        while (i < text.size() && is_blank(text[i])) ++i;
        if (i == text.size()) return attributes;
        std::size_t equals = text.find('=', i);
        if (equals == none) throw error();
        std::string_view name = trim_end(text.substr(i, equals - i));
        i = equals + 1;
        while (i < text.size() && is_blank(text[i])) ++i;
        if (name.empty() || i == text.size() || text[i] != '"') throw error();
        std::size_t close = text.find('"', i + 1);
        if (close == none) throw error();
        if (!attributes.emplace(name, decode_entities(text.data() + i + 1, close - i - 1)).second) throw error();
        i = close + 1;
    }
}

// The parent's declarations plus the child's own, which also stay among its attributes.
namespace_map child_namespaces(const namespace_map& parent, const attribute_map& attributes) {
    namespace_map namespaces = parent;
    for (const auto& [name, value] : attributes) {
        if (name == "xmlns") namespaces[""] = value;
        else if (name.compare(0, 6, "xmlns:") == 0) namespaces[name.substr(6)] = value;
    }
    return namespaces;
}

} // namespace

void scan_children(handler& h, const namespace_map& namespaces, std::string_view content) {
    std::size_t pos = 0;
    while (pos < content.size()) {
        std::size_t lt = content.find('<', pos);
        if (lt == none) lt = content.size();
        if (lt > pos) h.on_text(content.data() + pos, lt - pos);
        if (lt == content.size()) return;
        if (lt + 1 == content.size()) throw error();
        if (std::size_t after = skip_markup(content, lt); after != none) {
            pos = after;
            continue;
        }
        std::size_t gt = tag_end(content, lt);
        if (content[lt + 1] == '/') return;  // the end of this level

        std::string_view tag = content.substr(lt + 1, gt - lt - 1);
        const bool self_closing = !tag.empty() && tag.back() == '/';
        if (self_closing) tag.remove_suffix(1);
        std::size_t name_end = 0;
        while (name_end < tag.size() && !is_blank(tag[name_end])) ++name_end;
        std::string_view name = tag.substr(0, name_end);
        if (name.empty() || name.find_first_of("/<") != none) throw error();

        std::string_view child_content;
        pos = gt + 1;
        if (!self_closing) {
            span end = find_end_tag(content, pos, name, 1);
            child_content = content.substr(pos, end.content_end - pos);
            pos = end.after;
        }
        if (h.skip_element(name)) continue;
        attribute_map attributes = read_attributes(tag.substr(name_end));
        namespace_map inner = child_namespaces(namespaces, attributes);

        std::string_view uri;
        std::string_view local_name = name;
        const std::size_t colon = name.find(':');
        const std::string prefix(colon == none ? std::string_view() : name.substr(0, colon));
        if (auto declared = inner.find(prefix); declared != inner.end()) {
            uri = declared->second;
            if (colon != none) local_name = name.substr(colon + 1);
        }
        if (h.skip_content(name)) child_content = {};
        h.on_element(inner, uri, local_name, attributes, child_content.data(), child_content.size());
    }
}

} // namespace ZR::xmlParser
