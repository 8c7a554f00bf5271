// The element index: one pass records where every element starts and ends; names, attributes
// and namespaces of an element's children are read the first time that element is asked, as a
// scan of its children would read them, and the outcome is kept.

#include "xml/element_index.h"

#include <algorithm>

#include "xml/markup.h"

namespace ZR::xmlParser {

namespace {

using namespace detail;

std::string_view without_trailing_slashes(std::string_view uri) {
    while (!uri.empty() && uri.back() == '/') uri.remove_suffix(1);
    return uri;
}

std::string_view trimmed(std::string_view s) {
    while (!s.empty() && is_blank(s.front())) s.remove_prefix(1);
    return trim_end(s);
}

// Decoding only changes text that holds a reference or a byte above ASCII (which it checks).
bool needs_decoding(std::string_view value) {
    for (char c : value)
        if (c == '&' || static_cast<unsigned char>(c) >= 0x80) return true;
    return false;
}

bool is_declaration(std::string_view name) {
    return name == "xmlns" || name.substr(0, 6) == "xmlns:";
}

} // namespace

// Records the elements nested in a child of the root as the step over that child meets them.
struct element_index::recorder {
    element_index& index;

    void on_start(std::size_t lt, std::size_t gt) { index.record_child(lt, gt, true); }
    void on_empty(std::size_t lt, std::size_t gt) { index.record_child(lt, gt, false); }
    void on_end(std::size_t lt) {
        entry& closed = index.entries_[index.open_.back()];
        index.open_.pop_back();
        closed.content_end = static_cast<std::uint32_t>(lt);
        closed.next = static_cast<std::uint32_t>(index.entries_.size());
    }
};

element_index::element_index(const element& e) : text_(e.content), root_element_(&e) {
    // Offsets are kept in 32 bits; answers are far smaller.
    if (text_.size() >= 0xFFFFFFFFu) throw error();
    entries_.reserve(text_.size() / 16 + 1);
    entries_.push_back({});
    entries_[root].content_end = static_cast<std::uint32_t>(text_.size());
    entries_[root].namespaces = &e.namespaces;

    // The root's own level, as a scan of its children walks it.
    recorder nested{*this};
    std::size_t pos = 0;
    while (pos < text_.size()) {
        const std::size_t lt = next_lt(text_, pos);
        if (lt == none) break;
        if (lt + 1 == text_.size()) throw error();
        if (text_[lt + 1] == '!') {
            if (const std::size_t after = skip_markup(text_, lt); after != none) {
                pos = after;
                continue;
            }
        }
        const std::size_t gt = tag_end(text_, lt);
        if (text_[lt + 1] == '/') break;  // the end of this level
        const bool self_closing = text_[gt - 1] == '/';
        const std::uint32_t child = static_cast<std::uint32_t>(entries_.size());
        // Closed below from what the step over finds, not through open_.
        record_child(lt, gt, false);
        pos = gt + 1;
        if (!self_closing) {
            const std::string_view name = text_.substr(lt + 1, name_length(text_.substr(lt + 1, gt - lt - 1)));
            if (name.empty()) throw error();
            const span end = step_over(text_, pos, name, nested);
            entries_[child].content_end = static_cast<std::uint32_t>(end.content_end);
            entries_[child].next = static_cast<std::uint32_t>(entries_.size());
            pos = end.after;
        }
    }
    entries_[root].next = static_cast<std::uint32_t>(entries_.size());
}

void element_index::record_child(std::size_t lt, std::size_t gt, bool wait_for_end) {
    entry& e = entries_.emplace_back();
    e.tag_begin = static_cast<std::uint32_t>(lt + 1);
    e.tag_end = static_cast<std::uint32_t>(gt);
    e.content_begin = e.content_end = static_cast<std::uint32_t>(gt + 1);
    e.next = static_cast<std::uint32_t>(entries_.size());
    if (wait_for_end) open_.push_back(static_cast<std::uint32_t>(entries_.size() - 1));
}

// What a scan of the parent reads of one child: its name, attributes and namespaces. Structure
// was checked by the pass that built the index.
void element_index::check_child(entry& child, const namespace_map& parent_namespaces) {
    std::string_view tag = text_.substr(child.tag_begin, child.tag_end - child.tag_begin);
    if (!tag.empty() && tag.back() == '/') tag.remove_suffix(1);
    const std::size_t name_end = name_length(tag);
    const std::string_view name = tag.substr(0, name_end);
    if (name.empty() || name.find_first_of("/<") != none) throw error();

    child.first_attribute = static_cast<std::uint32_t>(attributes_.size());
    bool declares = false;
    for_each_attribute(tag.substr(name_end), [&](std::string_view attribute_name, std::string_view value) {
        if (needs_decoding(value)) value = decoded_.emplace_back(decode_entities(value.data(), value.size()));
        attributes_.push_back({attribute_name, value});
        declares = declares || is_declaration(attribute_name);
    });
    child.attribute_count = static_cast<std::uint32_t>(attributes_.size() - child.first_attribute);

    // An attribute written twice is an error; tags hold few, so a sorted copy is cheap enough.
    const auto first = attributes_.begin() + child.first_attribute;
    if (child.attribute_count > 1) {
        std::vector<std::string_view> names;
        names.reserve(child.attribute_count);
        for (auto a = first; a != attributes_.end(); ++a) names.push_back(a->name);
        std::sort(names.begin(), names.end());
        if (std::adjacent_find(names.begin(), names.end()) != names.end()) throw error();
    }

    child.namespaces = &parent_namespaces;
    if (declares) {
        // Applied in name order, as an ordered attribute map would hand them out.
        std::vector<attribute_entry> declarations;
        for (auto a = first; a != attributes_.end(); ++a)
            if (is_declaration(a->name)) declarations.push_back(*a);
        std::sort(declarations.begin(), declarations.end(),
                  [](const attribute_entry& x, const attribute_entry& y) { return x.name < y.name; });
        namespace_map& own = namespaces_.emplace_back(parent_namespaces);
        for (const attribute_entry& d : declarations)
            own[std::string(d.name.size() == 5 ? std::string_view() : d.name.substr(6))] = std::string(d.value);
        child.namespaces = &own;
    }

    child.uri = {};
    std::string_view local_name = name;
    const std::size_t colon = name.find(':');
    const std::string prefix(colon == none ? std::string_view() : name.substr(0, colon));
    if (auto declared = child.namespaces->find(prefix); declared != child.namespaces->end()) {
        child.uri = declared->second;
        if (colon != none) local_name = name.substr(colon + 1);
    }
    child.local_name_begin = static_cast<std::uint32_t>(local_name.data() - text_.data());
    child.local_name_size = static_cast<std::uint32_t>(local_name.size());
}

void element_index::check_children(node parent) {
    entry& p = entries_[parent];
    if (p.children == entry::check::passed) return;
    if (p.children == entry::check::failed) throw error();
    try {
        for (node c = parent + 1; c < p.next; c = entries_[c].next) check_child(entries_[c], *p.namespaces);
    } catch (const error&) {
        entries_[parent].children = entry::check::failed;
        throw;
    }
    entries_[parent].children = entry::check::passed;
}

template <typename Take>
void element_index::for_each_match(node parent, std::string_view name, std::string_view uri, Take take) {
    check_children(parent);
    const bool any_uri = uri.empty();
    uri = without_trailing_slashes(uri);
    for (node c = parent + 1; c < entries_[parent].next; c = entries_[c].next) {
        const entry& child = entries_[c];
        const std::string_view local_name = text_.substr(child.local_name_begin, child.local_name_size);
        if (local_name == name && (any_uri || without_trailing_slashes(child.uri) == uri)) take(c);
    }
}

element_index::node element_index::find_child(node parent, std::string_view name, std::string_view uri) {
    node found;
    if (!try_find_child(parent, name, found, uri)) throw error();
    return found;
}

bool element_index::try_find_child(node parent, std::string_view name, node& out, std::string_view uri) {
    bool found = false;
    node match = root;
    for_each_match(parent, name, uri, [&](node c) {
        if (found) throw error();  // "the one child" must be the only one
        found = true;
        match = c;
    });
    if (found) out = match;
    return found;
}

std::vector<element_index::node> element_index::find_children(node parent, std::string_view name,
                                                              std::string_view uri) {
    std::vector<node> matches;
    for_each_match(parent, name, uri, [&](node c) { matches.push_back(c); });
    return matches;
}

std::string_view element_index::content_of(node n) const {
    const entry& e = entries_[n];
    const std::string_view raw = text_.substr(e.content_begin, e.content_end - e.content_begin);
    // A found child's content is trimmed; the root's is taken as it was given.
    return n == root ? raw : trimmed(raw);
}

std::string element_index::text_of(node n) const {
    if (entries_[n].next != n + 1) throw error();  // a text field holds no markup
    // Without child elements, a "<" opens a comment, CDATA section or declaration, or (at the
    // root's own level only) the end tag after which a scan stops.
    const std::string_view content = content_of(n);
    std::string text;
    std::size_t pos = 0;
    while (pos < content.size()) {
        std::size_t lt = next_lt(content, pos);
        if (lt == none) lt = content.size();
        if (lt > pos) text += decode_entities(content.data() + pos, lt - pos);
        if (lt == content.size()) break;
        if (lt + 1 == content.size()) throw error();
        if (content[lt + 1] == '!') {
            if (const std::size_t after = skip_markup(content, lt); after != none) {
                pos = after;
                continue;
            }
        }
        tag_end(content, lt);  // an unterminated tag is an error even here
        if (content[lt + 1] != '/') throw error();
        break;
    }
    return text;
}

std::optional<std::string_view> element_index::attribute(node n, std::string_view name) const {
    if (n == root) {
        const auto found = root_element_->attributes.find(std::string(name));
        if (found == root_element_->attributes.end()) return std::nullopt;
        return std::string_view(found->second);
    }
    const entry& e = entries_[n];
    for (std::uint32_t a = e.first_attribute; a < e.first_attribute + e.attribute_count; ++a)
        if (attributes_[a].name == name) return attributes_[a].value;
    return std::nullopt;
}

element element_index::to_element(node n) const {
    if (n == root) return *root_element_;
    const std::string_view content = content_of(n);
    element out(content.data(), content.size());
    const entry& e = entries_[n];
    out.namespaces = *e.namespaces;
    for (std::uint32_t a = e.first_attribute; a < e.first_attribute + e.attribute_count; ++a)
        out.attributes.emplace(attributes_[a].name, attributes_[a].value);
    return out;
}

} // namespace ZR::xmlParser
