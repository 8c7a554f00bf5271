#pragma once
// One disc-id answer walked to its result three ways: by our reader as the lookup does it, and
// by pugixml and libxml2 building their trees and walking them by the same rules. The benchmark
// times each only after checking that all three give the same result.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "musicbrainz/release.h"

struct answer_walk_result {
    std::vector<std::string> disc_ids;                 // every disc listed, as collect_disc_ids gives them
    std::vector<musicbrainz_release> candidates;       // the media that hold the disc
};

// From the answer's bytes: prepare, "metadata", its "disc" children, then the disc ids and the
// release candidates on "metadata" and on each "disc". Each raises std::exception when the
// answer cannot be read at all.
answer_walk_result walk_answer_ours(std::string_view answer, std::string_view disc_id, std::size_t track_count);
answer_walk_result walk_answer_pugixml(std::string_view answer, std::string_view disc_id, std::size_t track_count);
answer_walk_result walk_answer_libxml2(std::string_view answer, std::string_view disc_id, std::size_t track_count);

// The first difference between two results in words, or empty when they are equal.
std::string first_difference(const answer_walk_result& a, const answer_walk_result& b);
