#pragma once
// Reading a disc-id answer: which media hold the disc, and the release each of them yields.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "musicbrainz/release.h"
#include "xml/xml_parser.h"

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

// The candidate with the earliest date, compared byte-wise: an empty date is earliest, and of
// equal dates the first wins. Raises musicbrainz_no_match when there is none.
const musicbrainz_release& choose_release(const std::vector<musicbrainz_release>& candidates);
