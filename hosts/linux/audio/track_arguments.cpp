#include "track_arguments.h"

#include <filesystem>

#include <hostkit/file_util.h>
#include <tunehall/exceptions.h>

#include "album_order.h"
#include "audio_file.h"
#include "file_track.h"

namespace {

void append_folder(const std::string& folder, track_list& out) {
    std::vector<std::string> names;
    std::error_code ec;
    for (const auto& entry : std::filesystem::directory_iterator(hostkit::utf8_path(folder), ec)) {
        const std::string name = hostkit::path_utf8(entry.path().filename());
        // Hidden files include other systems' sidecar files ("._01.flac"), which are no audio.
        if (name.empty() || name.front() == '.' || !is_audio_file_name(name)) continue;
        std::error_code file_ec;
        if (entry.is_regular_file(file_ec)) names.push_back(name);
    }
    if (ec) throw tunehall_io::exception_io("Cannot list folder: " + folder);

    track_list tracks;
    std::vector<tag_record> tags;
    for (const std::string& name : names) {
        tracks.push_back(make_file_track(hostkit::path_utf8(hostkit::utf8_path(folder) / hostkit::utf8_path(name))));
        track_info info;
        tracks.back()->get_info(info);
        tags.push_back(std::move(info.tags));
    }
    for (std::size_t i : linux_audio::album_order(names, tags)) out.push_back(tracks[i]);
}

} // namespace

track_list tracks_from_arguments(const std::vector<std::string>& args) {
    track_list out;
    for (const std::string& arg : args) {
        std::error_code ec;
        const auto status = std::filesystem::status(hostkit::utf8_path(arg), ec);
        if (!std::filesystem::exists(status)) throw tunehall_io::exception_io_not_found("File not found: " + arg);
        if (std::filesystem::is_directory(status)) {
            append_folder(arg, out);
        } else {
            track_ref track = make_file_track(arg);
            track_info info;
            track->get_info(info);  // reads the file now, so that a bad one stops everything
            out.push_back(track);
        }
    }
    return out;
}
