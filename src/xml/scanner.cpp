// The scan of one element's direct children, the core every lookup runs on. Nested elements are
// not reported, only stepped over by finding their end tags; that is done with an explicit
// stack bounded by max_depth, so a hostile answer cannot exhaust the worker thread's stack.

#include "xml/markup.h"
#include "xml/xml_parser.h"

namespace ZR::xmlParser {

namespace detail {

std::size_t skip_markup(std::string_view text, std::size_t at) {
    struct kind {
        std::string_view opener, closer;
    };
    // CDATA content is dropped: the answers carry no data in it.
    static constexpr kind kinds[] = {{"<!--", "-->"}, {"<![CDATA[", "]]>"}, {"<!", ">"}};
    for (const kind& k : kinds) {
        // An opener counts only with at least one byte after it.
        if (text.size() - at <= k.opener.size() || text.compare(at, k.opener.size(), k.opener) != 0) continue;
        const std::size_t end = text.find(k.closer, at + k.opener.size());
        if (end == none) throw error();
        return end + k.closer.size();
    }
    return none;
}

} // namespace detail

namespace {

using namespace detail;

attribute_map read_attributes(std::string_view text) {
    attribute_map attributes;
    for_each_attribute(text, [&attributes](std::string_view name, std::string_view value) {
        if (!attributes.emplace(name, decode_entities(value.data(), value.size())).second) throw error();
    });
    return attributes;
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
    no_recorder nested;
    std::size_t pos = 0;
    while (pos < content.size()) {
        std::size_t lt = next_lt(content, pos);
        if (lt == none) lt = content.size();
        if (lt > pos) h.on_text(content.data() + pos, lt - pos);
        if (lt == content.size()) return;
        if (lt + 1 == content.size()) throw error();
        if (content[lt + 1] == '!') {
            if (const std::size_t after = skip_markup(content, lt); after != none) {
                pos = after;
                continue;
            }
        }
        const std::size_t gt = tag_end(content, lt);
        if (content[lt + 1] == '/') return;  // the end of this level

        std::string_view tag = content.substr(lt + 1, gt - lt - 1);
        const bool self_closing = !tag.empty() && tag.back() == '/';
        if (self_closing) tag.remove_suffix(1);
        const std::size_t name_end = name_length(tag);
        const std::string_view name = tag.substr(0, name_end);
        if (name.empty() || name.find_first_of("/<") != none) throw error();

        std::string_view child_content;
        pos = gt + 1;
        if (!self_closing) {
            const span end = step_over(content, pos, name, nested);
            child_content = content.substr(pos, end.content_end - pos);
            pos = end.after;
        }
        if (h.skip_element(name)) continue;
        const attribute_map attributes = read_attributes(tag.substr(name_end));
        const namespace_map inner = child_namespaces(namespaces, attributes);

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
