// pugixml's side of the walk benchmark: its DOM built from the answer with the default options
// (references decoded), then walked. pugixml knows nothing of namespaces, so elements are
// matched by name alone; the answers write no prefixes.

#include <stdexcept>

#include <pugixml.hpp>

#include "answer_walk.h"
#include "dom_walk.h"

namespace {

struct pugixml_dom {
    using node = pugi::xml_node;

    template <typename F>
    static void for_each_child(node parent, const char* name, F f) {
        for (node child = parent.child(name); child; child = child.next_sibling(name)) f(child);
    }

    static bool attribute(node e, const char* name, std::string& value) {
        pugi::xml_attribute a = e.attribute(name);
        if (!a) return false;
        value = a.value();
        return true;
    }

    // Character data only, as our reader reads it (which drops CDATA sections).
    static bool text(node e, std::string& text) {
        for (node child = e.first_child(); child; child = child.next_sibling()) {
            if (child.type() == pugi::node_element) return false;
            if (child.type() == pugi::node_pcdata) text += child.value();
        }
        return true;
    }
};

} // namespace

answer_walk_result walk_answer_pugixml(std::string_view answer, std::string_view disc_id, std::size_t track_count) {
    pugi::xml_document document;
    pugi::xml_parse_result parsed =
        document.load_buffer(answer.data(), answer.size(), pugi::parse_default, pugi::encoding_utf8);
    if (!parsed) throw std::runtime_error(std::string("pugixml: ") + parsed.description());
    return dom_walk<pugixml_dom>::run(document, disc_id, track_count);
}
