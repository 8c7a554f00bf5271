// A MusicBrainz answer on arbitrary bytes, read as the lookup reads it: the document prepared,
// its element, "metadata", the "disc" children, the disc ids listed and the release candidates
// for some of them. Along the way every element of the document (up to a budget) is checked
// against the reader's lookups:
// - find_children, try_find_child and find_child report exactly the children a plain scan
//   reports, with the same content, attributes and namespaces, and fail as documented (none or
//   several for the one child; a failed lookup leaves its output untouched);
// - a child inherits its parent's namespace declarations and adds its own;
// - text_of refuses an element with child elements.
// The walk itself must never throw, and what it yields must fit the disc and track count asked
// for. A refusal must be the reader's "XML error"; any other exception ends the run as a crash.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <list>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz_checks.h"
#include "musicbrainz/lookup.h"
#include "musicbrainz/parse_unsigned.h"
#include "musicbrainz/response_walk.h"
#include "xml/xml_parser.h"

namespace {

namespace xml = ZR::xmlParser;

// Bounds the work per input: every lookup re-scans its element, so checking every element of a
// large answer would make each run slow and the fuzzer blind.
constexpr int element_budget = 40;
constexpr std::size_t names_checked_per_element = 3;
constexpr std::size_t disc_ids_walked = 2;     // besides one the answer does not list
constexpr std::size_t track_counts_walked = 2;

bool same_element(const xml::element& a, const xml::element& b) {
    return a.content == b.content && a.attributes == b.attributes && a.namespaces == b.namespaces;
}

// Services write namespace URIs with and without a closing "/", and both name one namespace.
bool same_namespace(std::string_view a, std::string_view b) {
    while (!a.empty() && a.back() == '/') a.remove_suffix(1);
    while (!b.empty() && b.back() == '/') b.remove_suffix(1);
    return a == b;
}

struct child {
    std::string uri;
    std::string local_name;
    xml::element e;
};

// Every direct child as the scan reports it, built the way the lookups build their results.
class child_collector final : public xml::handler {
public:
    std::vector<child> children;

    void on_element(const xml::namespace_map& namespaces, std::string_view uri, std::string_view local_name,
                    const xml::attribute_map& attributes, const char* content, std::size_t length) override {
        child c{std::string(uri), std::string(local_name), xml::element(content, length)};
        c.e.namespaces = namespaces;
        c.e.attributes = attributes;
        children.push_back(std::move(c));
    }
    void on_text(const char*, std::size_t) override {}
    bool skip_element(std::string_view) override { return false; }
    bool skip_content(std::string_view) override { return false; }
};

template <typename Lookup>
bool refused(Lookup lookup) {
    try {
        lookup();
    } catch (const xml::error&) {
        return true;
    }
    return false;
}

// One element's lookups against the plain scan of its children.
void check_lookups(const xml::element& parent, const std::vector<child>& children, std::string_view name,
                   std::string_view uri) {
    std::vector<const xml::element*> expected;
    for (const child& c : children)
        if (c.local_name == name && (uri.empty() || same_namespace(c.uri, uri))) expected.push_back(&c.e);

    const std::list<xml::element> all = xml::find_children(parent, name, uri);
    require(all.size() == expected.size(), "find_children reports every child of that name and namespace");
    std::size_t i = 0;
    for (const xml::element& found : all)
        require(same_element(found, *expected[i++]), "find_children reports each child as the scan does");

    xml::element out;
    out.content = "untouched";
    if (expected.size() > 1) {
        require(refused([&] { xml::try_find_child(parent, name, out, uri); }), "several children are not the one");
        require(out.content == "untouched", "a lookup that fails leaves its output untouched");
    } else {
        const bool found = xml::try_find_child(parent, name, out, uri);
        require(found == (expected.size() == 1), "try_find_child finds the one child there is");
        require(found ? same_element(out, *expected[0]) : out.content == "untouched",
                "try_find_child hands out the child, or leaves its output untouched");
    }
    if (expected.size() == 1)
        require(same_element(xml::find_child(parent, name, uri), *expected[0]), "find_child finds the one child");
    else
        require(refused([&] { xml::find_child(parent, name, uri); }), "find_child needs exactly one child");
}

// Where a "track-list" says how many tracks it has, the walk is tried with that count.
void note_track_count(const child& c, std::vector<std::size_t>& counts) {
    auto count = c.e.attributes.find("count");
    if (c.local_name != "track-list" || count == c.e.attributes.end()) return;
    std::uint32_t n;
    try {
        n = parse_unsigned(count->second.data(), count->second.size());
    } catch (const ZR::invalid_input&) {
        return;
    } catch (const ZR::overflow&) {
        return;
    }
    if (n >= 1 && n <= 99 && counts.size() < track_counts_walked &&
        std::find(counts.begin(), counts.end(), n) == counts.end())
        counts.push_back(n);
}

void check_tree(const xml::element& e, int& budget, std::vector<std::size_t>& track_counts) {
    if (--budget < 0) return;
    child_collector collector;
    try {
        xml::scan_children(collector, e.namespaces, e.content);
    } catch (const xml::error&) {
        // Every lookup runs the same scan to its end, so each must fail here too.
        require(refused([&] { xml::find_children(e, "release"); }), "find_children fails where the scan fails");
        require(refused([&] { xml::text_of(e); }), "text_of fails where the scan fails");
        return;
    }
    if (!collector.children.empty())
        require(refused([&] { xml::text_of(e); }), "text_of refuses an element with child elements");

    std::vector<std::string_view> names;
    for (const child& c : collector.children) {
        for (const auto& [declared, uri] : e.namespaces) {
            const bool redeclared = c.e.attributes.count("xmlns:" + declared) != 0 ||
                                    (declared.empty() && c.e.attributes.count("xmlns") != 0);
            auto inherited = c.e.namespaces.find(declared);
            require(redeclared || (inherited != c.e.namespaces.end() && inherited->second == uri),
                    "a child keeps its parent's namespace declarations");
        }
        if (names.size() < names_checked_per_element &&
            std::find(names.begin(), names.end(), c.local_name) == names.end()) {
            names.push_back(c.local_name);
            // Any namespace, the child's own, and the one the walk asks for.
            check_lookups(e, collector.children, c.local_name, "");
            if (!c.uri.empty()) check_lookups(e, collector.children, c.local_name, c.uri);
            if (c.uri != xml::musicbrainz_namespace)
                check_lookups(e, collector.children, c.local_name, xml::musicbrainz_namespace);
        }
        note_track_count(c, track_counts);
    }
    for (const child& c : collector.children) check_tree(c.e, budget, track_counts);
}

void check_release(const musicbrainz_release& release, std::size_t track_count) {
    require(release.tracks.size() == track_count, "a candidate has one track per selected track");
    // Copies read every text to its end, so a dangling one shows up under AddressSanitizer.
    musicbrainz_release copy = release;
    require(copy.title == release.title && copy.date == release.date && copy.album_artist == release.album_artist,
            "a copied candidate keeps its texts");
    for (std::size_t t = 0; t < track_count; ++t)
        require(copy.tracks[t].title == release.tracks[t].title && copy.tracks[t].artist == release.tracks[t].artist,
                "a copied candidate keeps its track texts");
}

// The walk for one disc id and track count, on "metadata" and then on each "disc"; the lookup's
// walk over one index of the whole answer must find the same. Then the choice among what it found.
void check_walk(const xml::element& metadata, const std::list<xml::element>& discs, musicbrainz_answer_walk& walk,
                const std::string& disc_id, std::size_t track_count, const std::vector<std::string>& listed_ids) {
    std::vector<musicbrainz_release> candidates;
    read_release_candidates(metadata, disc_id, track_count, candidates);
    for (const xml::element& disc : discs) read_release_candidates(disc, disc_id, track_count, candidates);
    std::vector<musicbrainz_release> walked;
    walk.read_release_candidates(disc_id, track_count, walked);
    require(walked == candidates, "one index for the whole answer finds the same candidates");

    // Each candidate is a medium that lists the disc, and each such listing is among the ids.
    const auto listings = static_cast<std::size_t>(std::count(listed_ids.begin(), listed_ids.end(), disc_id));
    require(candidates.size() <= listings, "a candidate comes only from a medium that lists the disc");
    for (const musicbrainz_release& r : candidates) check_release(r, track_count);

    if (candidates.empty()) {
        try {
            choose_release(candidates);
            require(false, "no candidate is no match");
        } catch (const musicbrainz_no_match&) {
        }
        return;
    }
    const musicbrainz_release& chosen = choose_release(candidates);
    const musicbrainz_release* first_earliest = &candidates.front();
    for (const musicbrainz_release& r : candidates)
        if (std::strcmp(r.date.c_str(), first_earliest->date.c_str()) < 0) first_earliest = &r;
    require(&chosen == first_earliest, "the first of the earliest candidates is chosen");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view text(reinterpret_cast<const char*>(data), size);
    try {
        xml::prepare_document(text);
    } catch (const xml::error&) {
        return 0;
    }
    const xml::element document(text.data(), text.size());
    int budget = element_budget;
    std::vector<std::size_t> track_counts;
    check_tree(document, budget, track_counts);

    xml::element metadata;
    std::list<xml::element> discs;
    try {
        metadata = xml::find_child(document, "metadata");
        discs = xml::find_children(metadata, "disc");
    } catch (const xml::error&) {
        return 0;
    }

    // Listing the disc ids (which the lookup does to fill its cache) never fails.
    std::vector<std::string> ids;
    collect_disc_ids(metadata, ids);
    for (const xml::element& disc : discs) collect_disc_ids(disc, ids);
    musicbrainz_answer_walk walk(metadata);
    std::vector<std::string> walked_ids;
    walk.collect_disc_ids(walked_ids);
    require(walked_ids == ids, "one index for the whole answer lists the same disc ids");

    std::vector<std::string> wanted;
    for (const std::string& id : ids)
        if (wanted.size() < disc_ids_walked && std::find(wanted.begin(), wanted.end(), id) == wanted.end())
            wanted.push_back(id);
    // A disc the answer does not list yields nothing.
    const std::string unlisted = "unlisted";
    if (std::find(ids.begin(), ids.end(), unlisted) == ids.end()) wanted.push_back(unlisted);
    if (track_counts.empty()) track_counts.push_back(1);
    for (const std::string& id : wanted)
        for (std::size_t count : track_counts) check_walk(metadata, discs, walk, id, count, ids);
    return 0;
}
