#pragma once
// Every element under one element, found in a single pass over its content, for a caller that
// asks many things of the same answer. The lookups of xml_parser.h scan their element to its end
// each time they are asked, so a walk down n levels scans the deepest text n times, and asking
// one element for several names scans it once per name. The index steps over the text once and
// answers find_child, try_find_child, find_children and text_of for any element under the root
// from that pass, with the results and the failures those lookups give on the elements they
// would have built. Nothing is copied: the index refers to the root's content, which must stay
// alive and unchanged while the index is used.

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "xml/xml_parser.h"

namespace ZR::xmlParser {

class element_index {
public:
    // An element under the root, or the root itself.
    using node = std::uint32_t;
    static constexpr node root = 0;

    // Throws "XML error" when the root's content is malformed where a scan of its children would
    // find it so (a mismatched or missing end tag, nesting deeper than max_depth, ...).
    explicit element_index(const element& e);
    element_index(const element_index&) = delete;
    element_index& operator=(const element_index&) = delete;

    // As find_child, try_find_child and find_children on the element that `parent` stands for.
    node find_child(node parent, std::string_view name, std::string_view uri = musicbrainz_namespace);
    bool try_find_child(node parent, std::string_view name, node& out, std::string_view uri = musicbrainz_namespace);
    std::vector<node> find_children(node parent, std::string_view name, std::string_view uri = musicbrainz_namespace);
    // The nodes passed to the operations below are the root and those the lookups hand out.
    // As text_of on that element.
    std::string text_of(node n) const;
    // The decoded value of the element's attribute `name`, if it has one.
    std::optional<std::string_view> attribute(node n, std::string_view name) const;
    // The element the lookups would have built for `n`: its content trimmed, its namespaces and
    // attributes. For tests and for callers that need a self-standing copy.
    element to_element(node n) const;

private:
    struct attribute_entry {
        std::string_view name;
        std::string_view value;  // decoded; points into the content or into decoded_
    };
    struct entry {
        std::uint32_t tag_begin = 0;      // just after "<"
        std::uint32_t tag_end = 0;        // at ">"
        std::uint32_t content_begin = 0;  // raw: not yet trimmed
        std::uint32_t content_end = 0;
        std::uint32_t next = 0;           // the first entry after this element's subtree
        std::uint32_t first_attribute = 0;
        std::uint32_t attribute_count = 0;
        std::uint32_t local_name_begin = 0;  // the local name, in the content
        std::uint32_t local_name_size = 0;
        enum class check : std::uint8_t { pending, passed, failed };
        check children = check::pending;  // whether a scan of this element's children succeeds
        const namespace_map* namespaces = nullptr;  // set once the parent's children passed
        std::string_view uri;
    };  // 64 bytes: the build makes one per element

    void record_child(std::size_t lt, std::size_t gt, bool wait_for_end);
    void check_children(node parent);
    void check_child(entry& child, const namespace_map& parent_namespaces);
    template <typename Take>
    void for_each_match(node parent, std::string_view name, std::string_view uri, Take take);
    std::string_view content_of(node n) const;

    std::string_view text_;
    const element* root_element_;
    std::vector<entry> entries_;
    std::vector<std::uint32_t> open_;  // entries whose end tags the build has not met yet
    std::vector<attribute_entry> attributes_;
    std::deque<std::string> decoded_;        // attribute values that needed decoding
    std::deque<namespace_map> namespaces_;   // maps of elements that declare namespaces

    struct recorder;
};

} // namespace ZR::xmlParser
