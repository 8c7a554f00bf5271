// libxml2's side of the walk benchmark: xmlReadMemory builds the DOM (references decoded, no
// network), which is walked and freed. Elements must be in the MusicBrainz namespace, as our
// reader requires.

#include <memory>
#include <stdexcept>

#include <libxml/parser.h>
#include <libxml/tree.h>

#include "answer_walk.h"
#include "dom_walk.h"
#include "xml/xml_parser.h"

namespace {

bool in_musicbrainz_namespace(xmlNodePtr e) {
    static const std::string uri(ZR::xmlParser::musicbrainz_namespace);
    return e->ns && e->ns->href && uri == reinterpret_cast<const char*>(e->ns->href);
}

bool named(const xmlChar* name, const char* wanted) { return xmlStrEqual(name, BAD_CAST wanted); }

struct libxml2_dom {
    using node = xmlNodePtr;

    template <typename F>
    static void for_each_child(node parent, const char* name, F f) {
        for (node child = parent->children; child; child = child->next)
            if (child->type == XML_ELEMENT_NODE && named(child->name, name) && in_musicbrainz_namespace(child))
                f(child);
    }

    static bool attribute(node e, const char* name, std::string& value) {
        for (xmlAttrPtr a = e->properties; a; a = a->next) {
            if (a->ns || !named(a->name, name)) continue;
            // A plain value is one text node and is read in place; anything else is assembled.
            if (a->children && !a->children->next && a->children->type == XML_TEXT_NODE) {
                value = reinterpret_cast<const char*>(a->children->content);
            } else {
                xmlChar* assembled = xmlNodeListGetString(e->doc, a->children, 1);
                value = assembled ? reinterpret_cast<const char*>(assembled) : "";
                xmlFree(assembled);
            }
            return true;
        }
        return false;
    }

    // Character data only, as our reader reads it (which drops CDATA sections).
    static bool text(node e, std::string& text) {
        for (node child = e->children; child; child = child->next) {
            if (child->type == XML_ELEMENT_NODE) return false;
            if (child->type == XML_TEXT_NODE) text += reinterpret_cast<const char*>(child->content);
        }
        return true;
    }
};

struct document_deleter {
    void operator()(xmlDocPtr d) const { xmlFreeDoc(d); }
};

} // namespace

answer_walk_result walk_answer_libxml2(std::string_view answer, std::string_view disc_id, std::size_t track_count) {
    std::unique_ptr<xmlDoc, document_deleter> document(
        xmlReadMemory(answer.data(), static_cast<int>(answer.size()), "answer.xml", nullptr, XML_PARSE_NONET));
    if (!document) throw std::runtime_error("libxml2 could not read the answer");
    // A document's first fields are laid out as a node's, so libxml2 lets it stand for one.
    return dom_walk<libxml2_dom>::run(reinterpret_cast<xmlNodePtr>(document.get()), disc_id, track_count);
}
