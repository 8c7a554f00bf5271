#include "cue_tag_store.h"

#include <sys/stat.h>

#include <hostkit/file_util.h>
#include <tunehall/exceptions.h>

#include "cue_sheet.h"

namespace linux_cue {

namespace {

std::string read_sheet(const std::string& path) {
    std::FILE* f = hostkit::open_file(hostkit::utf8_path(path), "rb");
    if (!f) throw tunehall_io::exception_io_not_found("File not found: " + path);
    std::string text;
    char buffer[8192];
    for (std::size_t n; (n = std::fread(buffer, 1, sizeof buffer, f)) > 0;) text.append(buffer, n);
    std::fclose(f);
    return text;
}

std::size_t track_index(const cue_sheet& sheet, const std::string& path, unsigned number) {
    for (std::size_t i = 0; i < sheet.tracks.size(); ++i)
        if (sheet.tracks[i].number == number) return i;
    throw tunehall_io::exception_io_data("No TRACK " + std::to_string(number) + " in " + path);
}

} // namespace

tag_record read_cue_tags(const std::string& path, unsigned number) {
    const cue_sheet sheet = parse_cue_sheet(read_sheet(path), path);
    return cue_track_tags(sheet, track_index(sheet, path, number));
}

void update_cue_tags(const std::string& path, unsigned number,
                     const std::function<std::optional<tag_record>(const tag_record&)>& change) {
    const std::string text = read_sheet(path);
    const cue_sheet sheet = parse_cue_sheet(text, path);
    const std::size_t track = track_index(sheet, path, number);
    std::optional<tag_record> changed = change(cue_track_tags(sheet, track));
    if (!changed) return;
    // A sheet the user marked read-only stays as it is, as audio files do.
    struct stat st {};
    if (::stat(path.c_str(), &st) == 0 && (st.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0)
        throw tunehall_io::exception_io_denied("Access denied: " + path);
    hostkit::replace_file_atomically(hostkit::utf8_path(path), with_track_tags(text, path, track, *changed));
}

} // namespace linux_cue
