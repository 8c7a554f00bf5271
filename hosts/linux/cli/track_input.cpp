#include "cli/track_input.h"

#include <hostkit/plain_track.h>
#include <tunehall/exceptions.h>

#include "audio/track_arguments.h"
#include "cue/cue_album.h"

namespace tessellon_cli {

namespace {

std::optional<unsigned> data_track_option(const option_reader& options) {
    auto text = options.value("--data-track");
    if (!text) return std::nullopt;
    char* end = nullptr;
    const unsigned long n = std::strtoul(text->c_str(), &end, 10);
    if (text->empty() || *end != '\0' || n == 0 || n > 99) throw usage_error{"--data-track: '" + *text + "' is not a track number"};
    return static_cast<unsigned>(n);
}

album_input same_for_both(track_list tracks) { return {tracks, tracks}; }

} // namespace

album_input read_album(const option_reader& options) {
    const bool lengths = options.value("--lengths").has_value(), toc = options.value("--toc").has_value();
    const bool files = !options.positional().empty();
    if (lengths + toc + files > 1) throw usage_error{"give one of FILES|DIR|CUE, --lengths or --toc"};
    if (options.value("--data-track") && !toc) throw usage_error{"--data-track goes with --toc"};
    if (lengths) {
        track_list tracks;
        int n = 0;
        for (double seconds : parse_lengths(*options.value("--lengths")))
            tracks.push_back(hostkit::make_plain_track("track " + std::to_string(++n), seconds));
        return same_for_both(tracks);
    }
    if (toc) {
        try {
            linux_cue::album_tracks album = linux_cue::toc_album(*options.value("--toc"), data_track_option(options));
            return {album.tracks, album.musicbrainz};
        } catch (const tunehall_io::exception_io_data& e) {
            throw usage_error{e.what()};
        }
    }
    if (!files) throw usage_error{"name the album's files, folder or cue sheet (or --lengths L1,L2,... or --toc TOC)"};
    // A cue sheet stands for the whole disc.
    for (const std::string& arg : options.positional())
        if (auto sheet = linux_cue::cue_sheet_of(arg)) {
            if (options.positional().size() > 1) throw usage_error{"a cue sheet stands for the whole album: name " + arg + " alone"};
            linux_cue::album_tracks album = linux_cue::read_cue_album(*sheet);
            return {album.tracks, album.musicbrainz};
        }
    track_list tracks = tracks_from_arguments(options.positional());
    if (tracks.empty()) throw usage_error{"no audio files (.flac .mp3 .ogg .opus .wav .m4a) or cue sheet in the given folders"};
    return same_for_both(tracks);
}

track_list read_tracks(const option_reader& options) { return read_album(options).tracks; }

} // namespace tessellon_cli
