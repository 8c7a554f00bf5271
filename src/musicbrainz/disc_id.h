#pragma once
// The MusicBrainz disc id of the selected tracks: a table of contents of its own (not the CDDB
// one), hashed in the web service's text form and encoded in its base64 variant.

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <tunehall/track.h>

struct musicbrainz_toc {
    std::uint64_t leadout = 0;              // frames, from the start of the disc
    std::vector<std::uint64_t> offsets;     // frames; one per track, lead-in included
};

// The TOC of `tracks` in selection order, from each track's info record. The lead-in is 150
// frames plus the first track's cue-sheet pregap. The lead-out rounds the sum of the lengths
// once while the offsets round each length, so the two may differ by a frame or more; discs in
// the database were named that way. A track without an info record, or with a length that is
// not above zero, adds nothing (the next track gets the same offset). Raises
// std::invalid_argument "invalid argument" unless there are 1 to 99 tracks.
musicbrainz_toc compute_musicbrainz_toc(const track_list& tracks);
// The same from plain lengths in seconds; `pregap` is a cue-sheet time ("mm:ss:ff") or null, and
// an unreadable one raises the host's bad-cue-sheet error.
musicbrainz_toc compute_musicbrainz_toc(std::span<const double> lengths, const char* pregap = nullptr);

// The 28-character id of a TOC of 1 to 99 tracks (else std::invalid_argument).
std::string musicbrainz_disc_id(const musicbrainz_toc& toc);
std::string compute_musicbrainz_disc_id(const track_list& tracks);
std::string compute_musicbrainz_disc_id(std::span<const double> lengths, const char* pregap = nullptr);

// The web service's TOC notation: "1+" count "+" lead-out, then "+" and each offset, decimal.
std::string musicbrainz_toc_text(const musicbrainz_toc& toc);

// Whether `text` has the form of a disc id: 28 characters of A-Z a-z 0-9 "." "_" "-". Only such
// texts may name files.
bool is_disc_id_form(std::string_view text);
