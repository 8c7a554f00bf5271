#pragma once
// A track the host knows only by name, length and info record: tracks given as lengths on the
// command line, and tracks of a test host's manifest.

#include <string>

#include <tunehall/track.h>

namespace hostkit {

// A track at `path` (its part `subsong` when not 0, as a track of a cue sheet) playing `seconds`,
// whose info record is `info` (its length is set to `seconds`).
track_ref make_plain_track(const std::string& path, double seconds, track_info info = {}, std::uint32_t subsong = 0);

} // namespace hostkit
