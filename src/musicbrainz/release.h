#pragma once
// What one MusicBrainz lookup yields: the release and medium that hold the disc.

#include <cstdint>
#include <string>
#include <vector>

struct musicbrainz_track {
    std::vector<std::string> artist;  // one entry per credited artist, in answer order; may be empty
    std::string title;

    bool operator==(const musicbrainz_track&) const = default;
};

struct musicbrainz_release {
    std::vector<musicbrainz_track> tracks;  // one per selected track, by track number - 1
    std::string title;
    std::vector<std::string> album_artist;
    std::string date;                       // as the answer writes it: "1999-05-10", "1999" or empty
    std::uint32_t disc_number = 0;          // the medium's position, from 1
    std::uint32_t total_discs = 0;          // media in the release
    // The service did not know the disc id; the medium was the closest by its track lengths.
    bool matched_by_toc = false;

    bool operator==(const musicbrainz_release&) const = default;
};
