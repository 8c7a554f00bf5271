#pragma once
// Disc-id answers of any size for the MusicBrainz benchmarks, in the web service's shape:
// metadata > disc > release-list > release > medium-list > medium > disc-list and track-list,
// each track with its recording and artist credit. Every release has two media of
// answer_track_count tracks; one of them lists answer_disc_id, the other another disc.

#include <cstddef>
#include <string>

inline constexpr const char* answer_disc_id = "lwHl8fGzJyLXQR33ug60E8jhf4k-";
inline constexpr std::size_t answer_track_count = 15;

// The whole answer, with its XML declaration. Texts include references ("&amp;", "&#233;") and
// multi-byte UTF-8 so that decoding is part of the work, and some tracks credit two artists.
std::string make_musicbrainz_answer(unsigned releases);
