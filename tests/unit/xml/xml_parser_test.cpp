// The XML reader the web-service answers go through: documents, entities, tags and attributes,
// namespaces, the lookups, and the failures each of them reports.

#include <atomic>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "xml/xml_parser.h"
#include "xml_test_support.h"

namespace {

using namespace xml_testing;

// The service's namespace declared on a wrapping element, so that the lookups (which look in
// that namespace) see the children of `inner`.
xml::element in_namespace(const std::string& inner) {
    return xml::find_child(document("<m xmlns=\"" + ns + "\">" + inner + "</m>"), "m");
}

// Fails the test unless `action` raises an XML error with that message.
template <typename Action>
void expect_xml_error(Action action, const char* message = "XML error") {
    EXPECT_EQ(outcome(action), message);
}

// ---------------------------------------------------------------------------------------------
// Entities

TEST(xml_entities, decode_to_the_characters_or_are_refused) {
    const std::pair<std::string, std::string> decoded[] = {
        {"&#65;", "A"}, {"&#x41;", "A"}, {"&#X41;", "A"},
        {"&65;", "A"},  // a name starting with a digit is a decimal number
        {"&AMP;", "&"}, {"&amp;&lt;&gt;&apos;&quot;", "&<>'\""}, {"&nbsp;", "\xC2\xA0"},
        {"&#x2665;", "\xE2\x99\xA5"}, {"&#x10FFFF;", "\xF4\x8F\xBF\xBF"}, {"&#0;", std::string(1, '\0')},
        {"&#4294967295;", ""},  // fits in 32 bits, but UTF-8 cannot write it
        {"Ge\xC3\xA4usch &amp; more", "Ge\xC3\xA4usch & more"}, {"", ""},
    };
    for (const auto& [text, chars] : decoded) EXPECT_EQ(xml::decode_entities(text.data(), text.size()), chars) << text;
    for (std::string text : {"&foo;", "Tom & Jerry", "&amp", "&;", "&#;", "&#x;", "&#12a;", "&#4294967296;",
                             "&#x100000000;", "caf\xE9" /* Latin-1, not UTF-8 */, "\xC3", "\x80"}) {
        SCOPED_TRACE(text);
        expect_xml_error([&] { xml::decode_entities(text.data(), text.size()); });
    }
}

// ---------------------------------------------------------------------------------------------
// UTF-8 helpers

TEST(xml_utf8, code_points_up_to_31_bits_encode_and_decode) {
    const std::pair<std::uint32_t, std::string> cases[] = {
        {0x41, "A"}, {0x7F, "\x7F"}, {0x80, "\xC2\x80"}, {0x7FF, "\xDF\xBF"}, {0x800, "\xE0\xA0\x80"},
        {0xFFFF, "\xEF\xBF\xBF"}, {0x10000, "\xF0\x90\x80\x80"}, {0x1FFFFF, "\xF7\xBF\xBF\xBF"},
        {0x200000, "\xF8\x88\x80\x80\x80"}, {0x4000000, "\xFC\x84\x80\x80\x80\x80"},
        {0x7FFFFFFF, "\xFD\xBF\xBF\xBF\xBF\xBF"},
    };
    for (const auto& [code_point, bytes] : cases) {
        char out[6];
        EXPECT_EQ(std::string(out, xml::utf8_encode_char(code_point, out)), bytes);
        std::uint32_t decoded = 0;
        EXPECT_EQ(xml::utf8_decode_char(bytes.data(), bytes.size(), decoded), bytes.size());
        EXPECT_EQ(decoded, code_point);
    }
    char out[6];
    EXPECT_EQ(xml::utf8_encode_char(0x80000000u, out), 0u);
    EXPECT_EQ(xml::utf8_encode_char(0xFFFFFFFFu, out), 0u);
}

TEST(xml_utf8, malformed_and_truncated_sequences_decode_to_nothing) {
    const std::vector<std::string> bad = {
        "\x80",              // continuation byte first
        "\xC3",              // truncated
        "\xE2\x99",          // truncated
        "\xC3\x41",          // second byte is no continuation
        "\xC0\x80",          // overlong NUL
        "\xE0\x80\xAF",      // overlong "/"
        "\xFE", "\xFF",
    };
    for (const std::string& bytes : bad) {
        std::uint32_t cp = 0;
        EXPECT_EQ(xml::utf8_decode_char(bytes.data(), bytes.size(), cp), 0u) << testing::PrintToString(bytes);
    }
    std::uint32_t cp = 0;
    EXPECT_EQ(xml::utf8_decode_char("\xE2\x99\xA5", 2, cp), 0u) << "the length bounds the sequence";
}

// ---------------------------------------------------------------------------------------------
// Document preparation

TEST(xml_declaration, is_skipped_with_a_byte_order_mark_and_other_processing_left_in_place) {
    const std::pair<std::string, std::string> cases[] = {
        {"<a/>", "<a/>"},
        {"\xEF\xBB\xBF<a/>", "<a/>"},
        {"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n  <a/>", "<a/>"},
        {"\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"utf-8\"?><a/>", "<a/>"},
        {"<?xml version='1.0' encoding='UTF-16'?><a/>", "<a/>"},
        {"<?xml version=\"1.0\"?><a/>", "<a/>"},  // no encoding: accepted
        {"<?xml\tversion = \"1.0\"\r\nstandalone=\"yes\" ?><a/>", "<a/>"},
        {"<?xml encoding=\"&#85;TF-8\"?><a/>", "<a/>"},  // values are decoded
        {"<?xml-stylesheet href=\"s.xsl\"?><a/>", "<?xml-stylesheet href=\"s.xsl\"?><a/>"},
        {"  <?xml version=\"1.0\"?><a/>", "  <?xml version=\"1.0\"?><a/>"},
    };
    for (const auto& [text, rest] : cases) {
        std::string_view view = text;
        xml::prepare_document(view);
        EXPECT_EQ(std::string(view), rest);
    }
}

TEST(xml_declaration, refuses_encodings_it_does_not_read_and_malformed_declarations) {
    for (const char* text : {"<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><a/>",
                             "<?xml version=\"1.0\" encoding=\"windows-1252\"?><a/>",
                             "<?xml encoding=\"utf8\"?><a/>"}) {
        std::string_view view = text;
        expect_xml_error([&] { xml::prepare_document(view); }, "Heathen character encodings not supported");
    }
    // Malformed declarations are plain XML errors.
    for (const char* text : {"<?xml version=\"1.0\"", "<?xml version=\"1.0\"?", "<?xml version=\"1.0\"?x<a/>",
                             "<?xml version=1.0?><a/>", "<?xml version\"1.0\"?><a/>", "<?xml 1version=\"1\"?><a/>",
                             "<?xml version=\"1.0?><a/>", "<?xml version=\"1.0'?><a/>", "<?xml v-x=\"1\"?><a/>",
                             "<?xml version=\"&bogus;\"?><a/>"}) {
        std::string_view view = text;
        expect_xml_error([&] { xml::prepare_document(view); });
    }
}

TEST(xml_document, is_the_text_without_surrounding_blanks) {
    const std::string text = "\r\n\t <a>x</a> \x01\n";
    xml::element doc(text.data(), text.size());
    EXPECT_EQ(doc.content, "<a>x</a>");
    EXPECT_TRUE(doc.namespaces.empty());
    EXPECT_TRUE(doc.attributes.empty());
    // Bytes of 128 and above are not blanks.
    const std::string high = "\xA0<a/>\xA0";
    EXPECT_EQ(xml::element(high.data(), high.size()).content, high);
}

// ---------------------------------------------------------------------------------------------
// Lookups

TEST(xml_lookups, find_child_refuses_two_or_none_and_try_find_child_only_two) {
    xml::element parent = xml::find_child(in_namespace("<a><b>1</b><c/><b>2</b></a>"), "a");
    std::list<xml::element> bs = xml::find_children(parent, "b");
    ASSERT_EQ(bs.size(), 2u);
    EXPECT_EQ(xml::text_of(bs.front()), "1");
    EXPECT_EQ(xml::text_of(bs.back()), "2");
    expect_xml_error([&] { xml::find_child(parent, "b"); });
    expect_xml_error([&] { xml::find_child(parent, "missing"); });
    EXPECT_TRUE(xml::find_children(parent, "missing").empty());
    xml::element out;
    out.content = "kept";
    expect_xml_error([&] { xml::try_find_child(parent, "b", out); });
    EXPECT_FALSE(xml::try_find_child(parent, "missing", out));
    EXPECT_EQ(out.content, "kept");
    ASSERT_TRUE(xml::try_find_child(parent, "c", out));
    EXPECT_EQ(out.content, "");
}

TEST(xml_lookups, only_direct_children_are_seen_by_their_case_sensitive_names) {
    xml::element a = xml::find_child(in_namespace("<a><b><c>deep</c></b><Title>t</Title></a>"), "a");
    EXPECT_TRUE(xml::find_children(a, "c").empty());
    EXPECT_EQ(xml::text_of(xml::find_child(xml::find_child(a, "b"), "c")), "deep");
    EXPECT_TRUE(xml::find_children(a, "title").empty());
}

TEST(xml_lookups, a_found_child_carries_its_attributes_namespaces_and_trimmed_content) {
    xml::element m = in_namespace("<disc id=\"x&amp;y\" n=\"2\">\n   <sectors>5</sectors>\n </disc>");
    xml::element disc = xml::find_child(m, "disc");
    EXPECT_EQ(disc.content, "<sectors>5</sectors>");
    EXPECT_EQ(disc.attributes, (xml::attribute_map{{"id", "x&y"}, {"n", "2"}}));
    EXPECT_EQ(disc.namespaces, (xml::namespace_map{{"", ns}}));
    // Self-closing, with and without attributes.
    m = in_namespace("<x/><y a=\"1\"/><z a=\"1\" />");
    EXPECT_EQ(xml::find_child(m, "y").attributes.at("a"), "1");
    EXPECT_EQ(xml::find_child(m, "z").attributes.at("a"), "1");
    EXPECT_EQ(xml::text_of(xml::find_child(m, "x")), "");
}

TEST(xml_lookups, end_tags_compare_ignoring_ascii_case) {
    EXPECT_EQ(xml::text_of(xml::find_child(in_namespace("<b>1</B>"), "b")), "1");
    EXPECT_EQ(xml::find_child(in_namespace("<Track><x>1</X ></TRACK\n>"), "Track").content, "<x>1</X >");
    expect_xml_error([] { in_namespace("<b>1</c>"); });
    expect_xml_error([] { xml::find_child(in_namespace("<a><b>1</c></a>"), "a"); });
}

// ---------------------------------------------------------------------------------------------
// Namespaces

TEST(xml_namespaces, uris_match_whatever_trailing_slashes_either_side_has) {
    xml::element doc = document("<p:x xmlns:p=\"U/\">1</p:x><q:y xmlns:q=\"U\">2</q:y><z xmlns=\"U//\">3</z>");
    EXPECT_EQ(xml::text_of(xml::find_child(doc, "x", "U")), "1");
    EXPECT_EQ(xml::text_of(xml::find_child(doc, "y", "U/")), "2");
    EXPECT_EQ(xml::text_of(xml::find_child(doc, "z", "U")), "3");
    xml::element out;
    EXPECT_FALSE(xml::try_find_child(doc, "x", out, "V"));
    EXPECT_FALSE(xml::try_find_child(doc, "x", out, "U/x"));
}

TEST(xml_namespaces, an_undeclared_prefix_stays_in_the_local_name_and_no_namespace_is_not_the_services) {
    xml::element doc = document("<p:x>1</p:x>");
    xml::element out;
    EXPECT_FALSE(xml::try_find_child(doc, "x", out, "U"));
    EXPECT_FALSE(xml::try_find_child(doc, "x", out, ""));
    // No wanted URI matches by local name alone.
    ASSERT_TRUE(xml::try_find_child(doc, "p:x", out, ""));
    EXPECT_EQ(out.content, "1");
    // Outside the wanted namespace an element is not found.
    doc = document("<metadata>no namespace</metadata>");
    expect_xml_error([&] { xml::find_child(doc, "metadata"); });
    EXPECT_EQ(xml::text_of(xml::find_child(doc, "metadata", "")), "no namespace");
}

TEST(xml_namespaces, declarations_are_inherited_overridden_and_kept_as_attributes) {
    xml::element outer = xml::find_child(
        document("<a xmlns=\"U\" xmlns:p=\"P\"><p:b xmlns:p=\"Q\"><c/></p:b><p:d/></a>"), "a", "U");
    EXPECT_EQ(outer.attributes, (xml::attribute_map{{"xmlns", "U"}, {"xmlns:p", "P"}}));
    xml::element b = xml::find_child(outer, "b", "Q");
    EXPECT_EQ(b.namespaces, (xml::namespace_map{{"", "U"}, {"p", "Q"}}));
    EXPECT_EQ(xml::find_child(b, "c", "U").content, "");
    EXPECT_EQ(xml::find_child(outer, "d", "P").content, "");
    xml::element out;
    EXPECT_FALSE(xml::try_find_child(outer, "b", out, "P"));
}

// ---------------------------------------------------------------------------------------------
// Text

TEST(xml_text, entities_are_decoded_skipped_markup_adds_nothing_and_children_leave_no_text) {
    xml::element m = in_namespace(
        "<t>Rock &amp; Roll</t>"
        "<c><![CDATA[abc]]></c>"
        "<n>a<!-- a comment with <tags> -->b<![CDATA[<x>]]>c<!DOCTYPE x>d</n>"
        "<q>&quot;Quoted&quot; &lt;b&gt;</q>");
    EXPECT_EQ(xml::text_of(xml::find_child(m, "t")), "Rock & Roll");
    EXPECT_EQ(xml::text_of(xml::find_child(m, "c")), "");
    EXPECT_EQ(xml::text_of(xml::find_child(m, "n")), "abcd");
    EXPECT_EQ(xml::text_of(xml::find_child(m, "q")), "\"Quoted\" <b>");
    // An element with children or a bad entity has no text.
    m = in_namespace("<t>a<b/>c</t><u>Simon & Garfunkel</u>");
    expect_xml_error([&] { xml::text_of(xml::find_child(m, "t")); });
    expect_xml_error([&] { xml::text_of(xml::find_child(m, "u")); });
}

// ---------------------------------------------------------------------------------------------
// Tags and attributes

TEST(xml_tags, a_greater_than_sign_inside_double_quotes_belongs_to_the_value) {
    xml::element m = in_namespace("<a x=\"1>2\" y=\" spaced \">t</a>");
    xml::element a = xml::find_child(m, "a");
    EXPECT_EQ(a.attributes.at("x"), "1>2");
    EXPECT_EQ(a.attributes.at("y"), " spaced ");
    EXPECT_EQ(a.content, "t");
    // Blanks around the equals sign are allowed.
    a = xml::find_child(in_namespace("<a\n  x =\t\"1\"  y= \"2\" ></a>"), "a");
    EXPECT_EQ(a.attributes, (xml::attribute_map{{"x", "1"}, {"y", "2"}}));
}

// Each text is the content of an element the lookups scan.
TEST(xml_tags, malformed_markup_is_an_xml_error_but_a_stray_end_tag_ends_the_level) {
    for (const char* text : {"<a x='1'>t</a>",            // single-quoted attribute
                             "<a x=\"1\" x=\"2\">t</a>",  // attribute twice
                             "<a x>t</a>", "<a x=\"1>t</a>", "<a x=\"1\"y=1>t</a>", "<a x=\"&nope;\">t</a>",
                             "<a>t", "<a>t</a", "<a><b>t</a>", "text <", "<!-- never closed",
                             "<![CDATA[ never closed", "<!DOCTYPE never closed", "<>t</>", "< a>t</a>",
                             "<a/b>t</a/b>", "<a<b>t</a<b>", "<a>t<>u</></a>"}) {
        SCOPED_TRACE(text);
        xml::element parent;
        parent.content = text;
        expect_xml_error([&] { xml::find_children(parent, "a", ""); });
    }
    // A stray end tag is no error: it ends the level.
    xml::element parent;
    parent.content = "<a>1</a></stray><a>2</a>";
    EXPECT_EQ(xml::find_children(parent, "a", "").size(), 1u);
}

// ---------------------------------------------------------------------------------------------
// Depth

TEST(xml_depth, the_deepest_allowed_nesting_is_read_and_deeper_is_an_xml_error_not_a_crash) {
    xml::element e = document(nested(xml::max_depth));
    for (unsigned level = 0; level < xml::max_depth; ++level) e = xml::find_child(e, "e", "");
    EXPECT_EQ(xml::text_of(e), "x");
    for (unsigned depth : {xml::max_depth + 1, 100000u}) {
        xml::element doc = document(nested(depth));
        expect_xml_error([&] { xml::find_child(doc, "e", ""); });
    }
}

// ---------------------------------------------------------------------------------------------
// The scan itself

class recording_handler : public xml::handler {
public:
    std::vector<std::string> calls;

    void on_element(const xml::namespace_map&, std::string_view uri, std::string_view local_name,
                    const xml::attribute_map& attributes, const char* content, std::size_t length) override {
        std::string call = "element " + std::string(uri) + " " + std::string(local_name) + " [" +
                           std::string(content, length) + "]";
        for (const auto& [name, value] : attributes) call += " " + name + "=" + value;
        calls.push_back(call);
    }
    void on_text(const char* text, std::size_t length) override {
        calls.push_back("text " + std::string(text, length));
    }
    bool skip_element(std::string_view) override { return false; }
    bool skip_content(std::string_view) override { return false; }
};

TEST(xml_scan, reports_text_runs_and_direct_children_in_document_order) {
    recording_handler h;
    xml::scan_children(h, {{"", "U"}, {"p", "P"}},
                       "a<x k=\"v\"><y>in</y></x>b<!--c-->d<p:z/><q:w/>tail");
    EXPECT_EQ(h.calls, (std::vector<std::string>{"text a", "element U x [<y>in</y>] k=v", "text b", "text d",
                                                 "element P z []", "element  q:w []", "text tail"}));
}

TEST(xml_scan, a_set_abort_flag_stops_find_children) {
    xml::element m = in_namespace("<b/><b/>");
    std::atomic<bool> abort{false};
    EXPECT_EQ(xml::find_children(m, "b", ns, &abort).size(), 2u);
    abort = true;
    EXPECT_THROW(xml::find_children(m, "b", ns, &abort), ZR::user_abort);
}

} // namespace
