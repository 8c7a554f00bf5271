#pragma once
// The test host's library: tracks listed in a manifest file, one per line, fields separated by
// tabs:
//
//   path <TAB> seconds <TAB> name=value <TAB> name=value ...
//
// A name starting with "info." is a technical field of the track ("info.pregap=00:02:00");
// any other name is a tag, and a tag named twice has two values. Lines starting with '#' and
// empty lines are skipped. In values, \t, \n, \r and \\ stand for a tab, a line break, a
// carriage return and a backslash; paths are taken as they are. The manifest is also the
// tracks' tag store: writing a track's tags rewrites the file. The library answers the
// component's auto-completion questions from the tags it holds.

#include <filesystem>
#include <mutex>
#include <string>
#include <vector>

#include <hostkit/tag_update_engine.h>
#include <tunehall/autocomplete.h>
#include <tunehall/track.h>

namespace winhost {

class track_library : public hostkit::tag_io {
public:
    // Reads `manifest` (a missing file is an empty library; a malformed line is
    // exception_io_data naming the file and line).
    explicit track_library(std::filesystem::path manifest);

    // Every track, in manifest order.
    track_list tracks() const;
    // The tracks whose path contains `part` (all for an empty `part`).
    track_list find(const std::string& part) const;
    // The tags the store holds now for the track at `path`.
    tag_record tags_of(const std::string& path) const;
    // The distinct values of tag `field` over the library, sorted.
    std::vector<std::string> values_of(const std::string& field) const;

    // hostkit::tag_io: the manifest as the tracks' tag store.
    tag_record read_tags(const track_ref& track) override;
    void write_tags(const track_ref& track, const tag_record& tags) override;

    // Parses one manifest line; false for a comment or an empty line.
    struct entry {
        std::string path;
        double seconds = 0;
        track_info info;
    };
    static bool parse_line(const std::string& line, entry& out);
    static std::string format_line(const entry& e);

private:
    std::size_t index_of(const std::string& path) const;
    void save_locked() const;

    std::filesystem::path manifest_;
    mutable std::mutex lock_;
    std::vector<entry> entries_;
};

// The library as the host's auto-completion source.
service_ref<library_suggestions> make_library_suggestions(const track_library& library);

} // namespace winhost
