#pragma once
// One MusicBrainz lookup for the selected tracks: disc id, cache or web service, the media that
// hold the disc, and the release chosen among them. Runs on a worker thread.

#include <memory>
#include <stdexcept>

#include <tunehall/abort.h>
#include <tunehall/track.h>

#include "musicbrainz/release.h"

class musicbrainz_cache;

// Nothing in the answer matched the selection.
class musicbrainz_no_match : public std::runtime_error {
public:
    musicbrainz_no_match() : std::runtime_error("No matching entry") {}
};

// Whether earlier answers kept in the cache may serve a lookup, and whether new ones are kept.
struct musicbrainz_cache_use {
    bool answer_from_cache = true;
    bool keep_new_answers = true;
};

// The release for `tracks` (one disc, in selection order), from the cache in the profile folder
// or else from the web service; the host's answer_cache_policy, when it offers one, may ask for a
// refresh or that nothing new be kept. When the service does not know the disc id (HTTP 404), it is asked once more with the
// disc's TOC, and the medium closest to the album by track lengths is taken (marked as matched by
// TOC). Only answers that yield a release are cached. Raises what the user is to be shown:
// "No matching entry", the service's not-found error (neither the id nor the TOC is known),
// "XML error", "invalid argument" (not 1..99 tracks), the host's network and file errors.
std::shared_ptr<musicbrainz_release> musicbrainz_lookup(const track_list& tracks, abort_source& abort);
// The same with a cache of the caller's, used as `use` says.
std::shared_ptr<musicbrainz_release> musicbrainz_lookup(
    const track_list& tracks, abort_source& abort, musicbrainz_cache& cache,
    musicbrainz_cache_use use = {});
