#include "cue_album.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include <hostkit/file_util.h>
#include <hostkit/plain_track.h>
#include <tunehall/exceptions.h>
#include <tunehall/text.h>

#include "audio/audio_file.h"
#include "cue_sheet.h"
#include "disc_layout.h"

namespace linux_cue {

namespace {

bool has_extension(const std::string& path, const char* extension) {
    const std::string name = hostkit::path_utf8(hostkit::utf8_path(path).filename());
    const std::size_t n = std::strlen(extension);
    return name.size() > n && tunehall::ascii_iequals(name.substr(name.size() - n), extension);
}

std::string read_text(const std::string& path) {
    std::FILE* f = hostkit::open_file(hostkit::utf8_path(path), "rb");
    if (!f) throw tunehall_io::exception_io_not_found("File not found: " + path);
    std::string text;
    char buffer[8192];
    for (std::size_t n; (n = std::fread(buffer, 1, sizeof buffer, f)) > 0;) text.append(buffer, n);
    const bool failed = std::ferror(f) != 0;
    std::fclose(f);
    if (failed) throw tunehall_io::exception_io("Cannot read " + path);
    return text;
}

// How long a file of the sheet plays, in frames: audio files by their exact length, raw data
// (a data track's BINARY image) by its 2352-byte sectors.
std::uint32_t file_frames(const std::string& path, const std::string& type) {
    if (type == "BINARY" || type == "MOTOROLA") {
        std::error_code ec;
        const auto size = std::filesystem::file_size(hostkit::utf8_path(path), ec);
        if (ec) throw tunehall_io::exception_io_not_found("File not found: " + path);
        return static_cast<std::uint32_t>(size / 2352);
    }
    return static_cast<std::uint32_t>(std::llround(read_audio_file(path).length * 75.0));
}

track_list make_tracks(const std::vector<laid_track>& laid, const std::vector<track_info>& infos,
                       const std::vector<std::pair<std::string, std::uint32_t>>& places, std::uint32_t pregap,
                       const track_info& first_extra) {
    track_list out;
    for (const laid_track& t : laid) {
        track_info info = infos[t.track];
        if (t.track == 0) {
            info.info_set("pregap", cue_time_text(pregap));
            for (auto& [key, value] : first_extra.info) info.info_set(key.c_str(), value);
        }
        out.push_back(hostkit::make_plain_track(places[t.track].first, t.seconds, std::move(info), places[t.track].second));
    }
    return out;
}

} // namespace

album_tracks read_cue_album(const std::string& path) {
    const std::string text = read_text(path);
    const cue_sheet sheet = parse_cue_sheet(text, path);
    const std::filesystem::path folder = hostkit::utf8_path(path).parent_path();

    // The disc is the files back to back, with PREGAP/POSTGAP silence where the sheet asks for it.
    std::vector<std::string> file_paths;
    std::vector<std::uint32_t> lengths;
    for (const cue_file& f : sheet.files) {
        file_paths.push_back(hostkit::path_utf8(folder / hostkit::utf8_path(f.name)));
        lengths.push_back(file_frames(file_paths.back(), f.type));
    }
    // Files before a file, in frames.
    std::vector<std::uint32_t> file_start(sheet.files.size() + 1, 0);
    for (std::size_t f = 0; f < lengths.size(); ++f) file_start[f + 1] = file_start[f] + lengths[f];
    disc_layout layout;
    std::uint32_t generated = 0;
    for (std::size_t i = 0; i < sheet.tracks.size(); ++i) {
        const cue_track& t = sheet.tracks[i];
        generated += t.pregap;
        if (t.start() > lengths[t.file])
            throw exception_bad_cuesheet("Bad cue sheet " + path + ": TRACK " + std::to_string(t.number) + " starts after the end of " + file_paths[t.file]);
        layout.offsets.push_back(150 + file_start[t.file] + t.start() + generated);
        generated += t.postgap;
        if (!t.audio) {
            if (layout.data_track) throw exception_bad_cuesheet("Bad cue sheet " + path + ": more than one data track");
            layout.data_track = i;
        }
    }
    const std::uint32_t files_total = file_start.back();
    layout.leadout = 150 + files_total + generated;
    disc_tracks laid;
    try {
        laid = lay_out(layout);
    } catch (const tunehall_io::exception_io_data& e) {
        throw exception_bad_cuesheet("Bad cue sheet " + path + ": " + e.what());
    }

    // One audio file (a data track's image aside): the sheet holds the tags. Otherwise each track
    // is its file.
    std::vector<std::size_t> audio_files;
    for (const cue_track& t : sheet.tracks)
        if (t.audio && std::find(audio_files.begin(), audio_files.end(), t.file) == audio_files.end()) audio_files.push_back(t.file);
    const bool one_file = audio_files.size() == 1;
    std::vector<track_info> infos;
    std::vector<std::pair<std::string, std::uint32_t>> places;
    for (std::size_t i = 0; i < sheet.tracks.size(); ++i) {
        const cue_track& t = sheet.tracks[i];
        track_info info;
        if (one_file) {
            info.tags = cue_track_tags(sheet, i);
            places.emplace_back(path, t.number);
        } else {
            if (t.audio) info = read_audio_file(file_paths[t.file]);
            places.emplace_back(file_paths[t.file], 0);
        }
        infos.push_back(std::move(info));
    }
    track_info first_extra;
    char name[24];  // "index " and any unsigned number
    for (const cue_index& i : sheet.tracks.front().indices)
        if (i.number >= 2) {
            std::snprintf(name, sizeof name, "index %02u", i.number);
            first_extra.info_set(name, cue_time_text(i.frames));
        }
    album_tracks out;
    out.tracks = make_tracks(laid.cddb, infos, places, laid.pregap, first_extra);
    out.musicbrainz = make_tracks(laid.musicbrainz, infos, places, laid.pregap, first_extra);
    return out;
}

std::optional<std::string> cue_sheet_of(const std::string& argument) {
    std::error_code ec;
    const std::filesystem::path p = hostkit::utf8_path(argument);
    if (std::filesystem::is_directory(p, ec)) {
        std::vector<std::string> sheets;
        for (const auto& entry : std::filesystem::directory_iterator(p, ec)) {
            const std::string name = hostkit::path_utf8(entry.path().filename());
            if (!name.empty() && name.front() != '.' && has_extension(name, ".cue")) sheets.push_back(hostkit::path_utf8(entry.path()));
        }
        if (sheets.size() > 1)
            throw tunehall_io::exception_io_data("The folder " + argument + " holds " + std::to_string(sheets.size()) + " cue sheets; name the one to use");
        if (sheets.size() == 1) return sheets.front();
        return std::nullopt;
    }
    if (has_extension(argument, ".cue")) return argument;
    return std::nullopt;
}

album_tracks toc_album(const std::string& toc, std::optional<unsigned> data_track) {
    const disc_layout layout = parse_toc(toc, data_track);
    const disc_tracks laid = lay_out(layout);
    std::vector<track_info> infos(layout.offsets.size());
    std::vector<std::pair<std::string, std::uint32_t>> places;
    for (std::size_t i = 0; i < layout.offsets.size(); ++i) places.emplace_back("track " + std::to_string(i + 1), 0);
    album_tracks out;
    out.tracks = make_tracks(laid.cddb, infos, places, laid.pregap, {});
    out.musicbrainz = make_tracks(laid.musicbrainz, infos, places, laid.pregap, {});
    return out;
}

bool is_cue_track(const track_handle& track) { return track.subsong() > 0 && has_extension(track.path(), ".cue"); }

} // namespace linux_cue
