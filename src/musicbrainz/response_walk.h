#pragma once
// Reading a disc-id answer: which media hold the disc, and the release each of them yields.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "musicbrainz/release.h"
#include "xml/xml_parser.h"

namespace ZR::xmlParser {
class element_index;
}

// The artists named by the element's "artist-credit" children, in answer order: each artist's
// own name (not the credited variant), join phrases left out. May be empty.
std::vector<std::string> read_artist_credit(const ZR::xmlParser::element& e);

// Appends the id of every disc listed under the element's releases
// (release-list > release > medium-list > medium > disc-list > disc), in answer order. An
// element without a release list adds nothing.
void collect_disc_ids(const ZR::xmlParser::element& e, std::vector<std::string>& out);

// Appends one release for every medium under the element's releases that lists `disc_id` and
// has exactly `track_count` numbered tracks. A medium that lacks a part (a release without a
// date, a track without a number) or whose numbers are off is passed over silently; a release
// list that cannot be walked (a disc without an id, a medium without a disc list) ends the walk
// of this element, keeping what it found so far.
void read_release_candidates(const ZR::xmlParser::element& e, std::string_view disc_id, std::size_t track_count,
                             std::vector<musicbrainz_release>& out);

// A whole answer walked over one element index: "metadata" and each of its "disc" children
// (a disc-id answer holds its releases under metadata > disc, a TOC answer directly under
// metadata). The answer's text is stepped over once for every question, instead of once per
// element and question; the results and failures are those of the functions above called on
// metadata and then on each disc. The metadata's content must outlive the walk.
class musicbrainz_answer_walk {
public:
    // Throws "XML error" when the answer is malformed where a scan of metadata's children finds it.
    explicit musicbrainz_answer_walk(const ZR::xmlParser::element& metadata);
    ~musicbrainz_answer_walk();
    musicbrainz_answer_walk(const musicbrainz_answer_walk&) = delete;
    musicbrainz_answer_walk& operator=(const musicbrainz_answer_walk&) = delete;

    void collect_disc_ids(std::vector<std::string>& out);
    void read_release_candidates(std::string_view disc_id, std::size_t track_count,
                                 std::vector<musicbrainz_release>& out);
    // For an answer to a request by table of contents, whose media need not list the disc:
    // appends the release of every medium that has one numbered track per entry of
    // `lengths_ms` (the album's track lengths) and whose track lengths are closest to them,
    // that is, with the smallest sum of the differences. A track without a length in the answer
    // differs by its whole length. Media are otherwise passed over as read_release_candidates
    // does; the releases are marked as matched by table of contents.
    void read_closest_media(std::span<const std::uint64_t> lengths_ms, std::vector<musicbrainz_release>& out);

private:
    std::unique_ptr<ZR::xmlParser::element_index> index_;
    std::vector<std::uint32_t> holders_;  // metadata, then its discs
};

// The candidate with the earliest date, compared byte-wise: an empty date is earliest, and of
// equal dates the first wins. Raises musicbrainz_no_match when there is none.
const musicbrainz_release& choose_release(const std::vector<musicbrainz_release>& candidates);
