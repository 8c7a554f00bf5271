// The lookups the response walk uses, each a scan handler over one element's children.

#include <stdexcept>

#include "xml/xml_parser.h"

namespace ZR::xmlParser {

namespace {

// Services write their namespace URIs with and without a closing "/"; both name the same one.
std::string_view without_trailing_slashes(std::string_view uri) {
    while (!uri.empty() && uri.back() == '/') uri.remove_suffix(1);
    return uri;
}

// Children with one local name in one namespace; an empty wanted URI matches any namespace.
class match_handler : public handler {
public:
    match_handler(std::string_view name, std::string_view uri)
        : name_(name), uri_(without_trailing_slashes(uri)), any_uri_(uri.empty()) {}

    void on_element(const namespace_map& namespaces, std::string_view uri, std::string_view local_name,
                    const attribute_map& attributes, const char* content, std::size_t length) final {
        before_callback();
        if (local_name == name_ && (any_uri_ || without_trailing_slashes(uri) == uri_)) {
            element match(content, length);
            match.namespaces = namespaces;
            match.attributes = attributes;
            on_match(std::move(match));
        }
    }
    void on_text(const char*, std::size_t) final { before_callback(); }
    bool skip_element(std::string_view) final { return false; }
    bool skip_content(std::string_view) final { return false; }

protected:
    virtual void on_match(element&& match) = 0;
    virtual void before_callback() {}

private:
    std::string_view name_;
    std::string_view uri_;
    bool any_uri_;
};

class first_match : public match_handler {
public:
    using match_handler::match_handler;
    bool found = false;
    element result;

private:
    void on_match(element&& match) override {
        if (found) throw error();  // "the one child" must be the only one
        result = std::move(match);
        found = true;
    }
};

class all_matches : public match_handler {
public:
    all_matches(std::string_view name, std::string_view uri, const std::atomic<bool>* abort)
        : match_handler(name, uri), abort_(abort) {}
    std::list<element> result;

private:
    void on_match(element&& match) override {
        if (result.size() == result.max_size()) throw std::length_error("list too long");
        result.push_back(std::move(match));
    }
    void before_callback() override {
        if (abort_ && abort_->load(std::memory_order_relaxed)) throw user_abort();
    }
    const std::atomic<bool>* abort_;
};

class text_collector : public handler {
public:
    std::string text;

    void on_element(const namespace_map&, std::string_view, std::string_view, const attribute_map&, const char*,
                    std::size_t) override {
        throw error();  // a text field holds no markup
    }
    void on_text(const char* data, std::size_t length) override { text += decode_entities(data, length); }
    bool skip_element(std::string_view) override { return false; }
    bool skip_content(std::string_view) override { return false; }
};

} // namespace

element find_child(const element& parent, std::string_view name, std::string_view uri) {
    element out;
    if (!try_find_child(parent, name, out, uri)) throw error();
    return out;
}

bool try_find_child(const element& parent, std::string_view name, element& out, std::string_view uri) {
    first_match h(name, uri);
    scan_children(h, parent.namespaces, parent.content);
    if (!h.found) return false;
    out = std::move(h.result);
    return true;
}

std::list<element> find_children(const element& parent, std::string_view name, std::string_view uri,
                                 const std::atomic<bool>* abort) {
    all_matches h(name, uri, abort);
    scan_children(h, parent.namespaces, parent.content);
    return std::move(h.result);
}

std::string text_of(const element& e) {
    text_collector h;
    scan_children(h, e.namespaces, e.content);
    return std::move(h.text);
}

} // namespace ZR::xmlParser
