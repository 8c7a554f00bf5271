#include "cli/track_input.h"

#include <hostkit/plain_track.h>

namespace tessellon_cli {

track_list read_tracks(const option_reader& options) {
    if (auto lengths = options.value("--lengths")) {
        if (!options.positional().empty()) throw usage_error{"give either FILES or --lengths, not both"};
        track_list tracks;
        int n = 0;
        for (double seconds : parse_lengths(*lengths))
            tracks.push_back(hostkit::make_plain_track("track " + std::to_string(++n), seconds));
        return tracks;
    }
    if (options.positional().empty()) throw usage_error{"name the album's files or folder (or --lengths L1,L2,...)"};
    throw usage_error{"reading audio files is not available in this build; use --lengths"};
}

} // namespace tessellon_cli
