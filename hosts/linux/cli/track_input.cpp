#include "cli/track_input.h"

#include <hostkit/plain_track.h>

#include "audio/track_arguments.h"

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
    track_list tracks = tracks_from_arguments(options.positional());
    if (tracks.empty()) throw usage_error{"no audio files (.flac .mp3 .ogg .opus .wav .m4a) in the given folders"};
    return tracks;
}

} // namespace tessellon_cli
