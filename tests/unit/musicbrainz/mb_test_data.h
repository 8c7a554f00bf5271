#pragma once
// MusicBrainz test data shared by the unit and integration tests: the TOCs of known discs (the
// shared fixtures' TSV and the local server's), tracks laid out so that they reproduce a TOC
// exactly, and answers read and parsed as the lookup does.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <tunehall/track.h>

#include "xml/xml_parser.h"

namespace mb_testing {

struct known_disc {
    std::string id;
    std::uint64_t leadout = 0;
    std::vector<std::uint64_t> offsets;
    std::string note;  // the fixture file, or what the disc is
};

// musicbrainz/discid-tocs.tsv of the shared fixtures.
std::vector<known_disc> fixture_discs();
// tests/servers/musicbrainz_answers/tocs.tsv: the discs whose answers carry track lists.
std::vector<known_disc> server_discs();
// The disc of either list with that id; fails the test when there is none.
known_disc disc_with_id(const std::string& id);

// Track lengths in seconds that reproduce the disc's offsets and lead-out, and the cue-sheet
// pregap ("mm:ss:ff", empty for none) that moves track 1 from frame 150 to its offset.
std::vector<double> lengths_of(const known_disc& disc);
std::string pregap_of(const known_disc& disc);
// Plain tracks of those lengths; the first carries the pregap in its info record.
track_list tracks_of(const known_disc& disc);
// Plain tracks of the given lengths (no pregap).
track_list tracks_of(const std::vector<double>& lengths);

// An answer's bytes: a fixture file (path under musicbrainz/) or a file of the local server's
// answers folder. Fails the test when it is missing.
std::string fixture_answer(const std::string& relative);
std::string server_answer(const std::string& disc_id);

// The "metadata" element of an answer, as the lookup finds it.
ZR::xmlParser::element metadata_of(const std::string& answer);

// Sets (or, with null, clears) an environment variable for its lifetime and then puts back what
// was there.
class scoped_environment {
public:
    scoped_environment(const char* name, const char* value);
    ~scoped_environment();
    scoped_environment(const scoped_environment&) = delete;
    scoped_environment& operator=(const scoped_environment&) = delete;

private:
    std::string name_;
    std::optional<std::string> old_;
};

} // namespace mb_testing
