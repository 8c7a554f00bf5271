#pragma once
// Tracks the user selected: where they are, how long they play, and what the host knows
// about them (technical fields and current tags).

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "service.h"
#include "tag_record.h"

// A track's technical fields (sample rate, codec, cue-sheet "pregap" and "index NN", ...)
// and its current tags.
struct track_info {
    double length = 0.0;                                    // seconds
    std::vector<std::pair<std::string, std::string>> info;  // technical fields, in order
    tag_record tags;

    // Value of the technical field `name` (ASCII case ignored), or null.
    const char* info_get(const char* name) const;
    void info_set(const char* name, const std::string& value);
};

class track_handle : public service_base {
    TUNEHALL_SERVICE_CLASS(service_base, {0x48950d44, 0x73d1, 0x4004, {0xb7, 0x86, 0xe8, 0x26, 0x15, 0x3e, 0x68, 0x75}})
public:
    // Display path of the track (UTF-8), empty for a handle without a location.
    virtual const char* path() const = 0;
    // Subsong index inside the file (0 for ordinary files).
    virtual std::uint32_t subsong() const = 0;
    // Length in seconds, or a value <= 0 when unknown.
    virtual double length() const = 0;
    // The info record; false when the host has none for this track.
    virtual bool get_info(track_info& out) const = 0;
};
using track_ref = service_ref<track_handle>;
using track_list = std::vector<track_ref>;

// Cue-sheet times ("mm:ss:ff", "ss:ff" or "ff", 75 frames per second) in seconds; more than
// two colons or non-digits raise exception_bad_cuesheet "invalid INDEX time syntax".
double cue_time_to_seconds(const char* text);

// Cue-sheet index data of a track: "pregap" and "index 02".."index 99" (field names formed
// with "index %02u").
struct cue_indices {
    double pregap = 0.0;            // seconds; 0 when absent
    bool any = false;               // whether any such field was present
};
cue_indices read_cue_indices(const track_info& info);
