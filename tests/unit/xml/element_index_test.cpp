// The element index against the lookups it stands in for: on documents shaped to one edge each,
// every element reachable through the index must give what find_children, find_child,
// try_find_child and text_of give on the element those lookups build, failures included.

#include <cctype>
#include <list>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "xml/element_index.h"
#include "xml/xml_parser.h"
#include "xml_test_support.h"

namespace {

using namespace xml_testing;
using node = xml::element_index::node;

bool same(const xml::element& a, const xml::element& b) {
    return a.content == b.content && a.attributes == b.attributes && a.namespaces == b.namespaces;
}

// The names the documents below use; each is asked in the service's namespace and in any.
const char* const asked_names[] = {"m", "a", "b", "c", "e", "x", "p:x", "title", "t"};

// Compares the index at `n` with the lookups on `e` (the element they would give for `n`), then
// goes down into every child the index reports, counting the elements it compared.
void compare_with_lookups(xml::element_index& index, node n, const xml::element& e, int& compared) {
    ++compared;
    std::string text_by_lookup, text_by_index;
    EXPECT_EQ(outcome([&] { text_by_lookup = xml::text_of(e); }), outcome([&] { text_by_index = index.text_of(n); }))
        << "text_of on [" << e.content << "]";
    EXPECT_EQ(text_by_lookup, text_by_index) << "text_of on [" << e.content << "]";
    for (const char* attribute : {"id", "count", "xmlns", "xmlns:p"}) {
        const auto by_lookup = e.attributes.find(attribute);
        const auto by_index = index.attribute(n, attribute);
        ASSERT_EQ(by_lookup != e.attributes.end(), by_index.has_value()) << attribute;
        if (by_index) {
            EXPECT_EQ(by_lookup->second, *by_index) << attribute;
        }
    }

    for (const char* name : asked_names) {
        for (const char* uri : {ns.c_str(), ""}) {
            const std::string where = std::string(name) + " in \"" + uri + "\" under [" + e.content + "]";
            std::list<xml::element> by_lookup;
            std::vector<node> by_index;
            const std::string failure = outcome([&] { by_lookup = xml::find_children(e, name, uri); });
            EXPECT_EQ(failure, outcome([&] { by_index = index.find_children(n, name, uri); })) << where;
            if (failure != "ok") continue;
            ASSERT_EQ(by_lookup.size(), by_index.size()) << where;

            node one = 0;
            xml::element one_element;
            EXPECT_EQ(outcome([&] { one_element = xml::find_child(e, name, uri); }),
                      outcome([&] { one = index.find_child(n, name, uri); }))
                << where;
            bool found_by_lookup = false, found_by_index = false;
            EXPECT_EQ(outcome([&] { found_by_lookup = xml::try_find_child(e, name, one_element, uri); }),
                      outcome([&] { found_by_index = index.try_find_child(n, name, one, uri); }))
                << where;
            EXPECT_EQ(found_by_lookup, found_by_index) << where;

            auto child = by_lookup.begin();
            for (node c : by_index) {
                EXPECT_TRUE(same(*child, index.to_element(c))) << where;
                // Children found in any namespace include those in the service's; go down once.
                if (*uri == '\0') compare_with_lookups(index, c, *child, compared);
                ++child;
            }
        }
    }
}

struct agreement_case {
    const char* what;
    std::string text;
    int elements;  // how many elements the comparison must reach, so that it cannot pass vacuously
};

void PrintTo(const agreement_case& c, std::ostream* os) { *os << c.what; }

class element_index_agreement : public testing::TestWithParam<agreement_case> {};

TEST_P(element_index_agreement, answers_as_the_lookups_do) {
    const xml::element root = document(GetParam().text);
    xml::element_index index(root);
    EXPECT_TRUE(same(index.to_element(xml::element_index::root), root));
    int compared = 0;
    compare_with_lookups(index, xml::element_index::root, root, compared);
    EXPECT_EQ(compared, GetParam().elements);
}

const std::string in_ns = " xmlns=\"" + ns + "\"";

INSTANTIATE_TEST_SUITE_P(
    documents, element_index_agreement,
    testing::Values(
        agreement_case{"plain", "<m" + in_ns + "><a id=\"1\">one</a><b count=\"2\"/><a>two</a></m>", 5},
        agreement_case{"same names nested",
                       "<m" + in_ns + "><a><a><a>deep</a></a></a><a>flat</a><b><a/></b></m>", 8},
        agreement_case{"comments, CDATA and declarations",
                       "<m" + in_ns +
                           "><!-- <a>not an element</a> --><t>x<![CDATA[<a>dropped</a>]]>y<!-- c -->z</t>"
                           "<!DOCTYPE a><a>&amp;&#65;&nbsp;</a></m>",
                       4},
        agreement_case{"self-closing with attributes",
                       "<m" + in_ns + "><x id=\"a&gt;b\" count=\"3\"/><x/><c\tid=\"q\" /></m>", 5},
        agreement_case{"trailing slashes on namespace URIs",
                       std::string("<m xmlns=\"") + ns + "//\"><p:x xmlns:p=\"" + ns + "/\"><a/></p:x><x/></m>", 5},
        agreement_case{"undeclared prefix and a redeclared default",
                       "<m" + in_ns + "><p:x>1</p:x><a xmlns=\"other\"><b/></a><a xmlns:=\"x\" xmlns=\"y\"/></m>",
                       6},
        agreement_case{"blanks kept out of found content and text",
                       "<m" + in_ns + ">\n  <title>  spaced  </title>\n  <a>\n <b/> </a>\n</m>", 5},
        agreement_case{"end tags in another case",
                       "<m" + in_ns + "><title>T</TITLE><a><b>b</B></A></m>", 5},
        agreement_case{"a stray end tag ends the root's level", "<a" + in_ns + "/></x><b/>", 2},
        agreement_case{"the root's text stops at a stray end tag", "text &amp; more</x>ignored<", 1},
        agreement_case{"a child that cannot be read fails only its parent",
                       "<m" + in_ns + "><a><b x='1'/></a><c>fine</c><e><b x=\"1\" x=\"2\"/></e>"
                       "<t><b/x>no</b/x></t></m>",
                       6},
        agreement_case{"a bad entity fails only the text that holds it",
                       "<m" + in_ns + "><t>&bogus;</t><a>ok</a><x id=\"&#65;\"/></m>", 5}),
    [](const testing::TestParamInfo<agreement_case>& info) {
        std::string name;
        for (const char c : std::string(info.param.what)) name += std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
        return name;
    });

// The index is built from one pass over the whole content; it must refuse exactly what a scan of
// the root's children refuses, and accept what the scan accepts.
struct structure_case {
    const char* text;
    bool refused;
};

void PrintTo(const structure_case& c, std::ostream* os) { *os << '"' << c.text << '"'; }

class element_index_structure : public testing::TestWithParam<structure_case> {};

TEST_P(element_index_structure, is_refused_where_the_scan_is) {
    const xml::element root = document(GetParam().text);
    EXPECT_EQ(outcome([&] { xml::find_children(root, "a", ""); }), GetParam().refused ? "XML error" : "ok");
    EXPECT_EQ(outcome([&] { xml::element_index index(root); }), GetParam().refused ? "XML error" : "ok");
}

INSTANTIATE_TEST_SUITE_P(
    documents, element_index_structure,
    testing::Values(structure_case{"<a><b></a>", true}, structure_case{"<a><b></c></a>", true},
                    structure_case{"<a>", true}, structure_case{"<a><!-- open</a>", true},
                    structure_case{"<a><![CDATA[ open</a>", true}, structure_case{"<a><b x=\"></b></a>", true},
                    structure_case{"<a></a><", true}, structure_case{"<a><></a>", true},
                    structure_case{"<a>x</a >", false}, structure_case{"<a><b x=\">\"></b></a>", false},
                    structure_case{"text only", false}, structure_case{"", false},
                    structure_case{"<a/><!-- tail -->", false}));

TEST(element_index_depth, reads_the_deepest_nesting_the_scan_reads_and_refuses_more) {
    const xml::element deepest = document(nested(xml::max_depth));
    xml::element_index index(deepest);
    node n = xml::element_index::root;
    for (unsigned level = 0; level < xml::max_depth; ++level) n = index.find_child(n, "e", "");
    EXPECT_EQ(index.text_of(n), "x");

    for (unsigned depth : {xml::max_depth + 1, 300u}) {
        const xml::element too_deep = document(nested(depth));
        EXPECT_EQ(outcome([&] { xml::element_index refused(too_deep); }), "XML error") << depth;
    }
}

TEST(element_index_lookups, a_failed_check_stays_failed_and_other_elements_stay_readable) {
    const xml::element root = document("<m" + in_ns + "><a><b x=1/></a><t>text</t></m>");
    xml::element_index index(root);
    const node m = index.find_child(xml::element_index::root, "m");
    const node a = index.find_child(m, "a");
    for (int attempt = 0; attempt < 2; ++attempt)
        EXPECT_EQ(outcome([&] { index.find_children(a, "b"); }), "XML error") << attempt;
    EXPECT_EQ(index.text_of(index.find_child(m, "t")), "text");
}

} // namespace
