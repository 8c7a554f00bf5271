#pragma once
// Helpers shared by the XML tests.

#include <string>
#include <string_view>

#include "xml/xml_parser.h"

namespace xml_testing {

namespace xml = ZR::xmlParser;

inline const std::string ns(xml::musicbrainz_namespace);

// A document element, as the lookup makes one from an answer.
inline xml::element document(const std::string& text) {
    std::string_view view = text;
    xml::prepare_document(view);
    return xml::element(view.data(), view.size());
}

// How an action ended: "ok" or the message of the XML error it raised.
template <typename Action>
std::string outcome(Action action) {
    try {
        action();
    } catch (const xml::error& e) {
        return e.what();
    }
    return "ok";
}

// `depth` "e" elements nested around the text "x".
inline std::string nested(unsigned depth) {
    std::string text;
    for (unsigned i = 0; i < depth; ++i) text += "<e>";
    text += "x";
    for (unsigned i = 0; i < depth; ++i) text += "</e>";
    return text;
}

} // namespace xml_testing
