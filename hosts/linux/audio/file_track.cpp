#include "file_track.h"

#include <filesystem>
#include <mutex>
#include <optional>

#include <hostkit/file_util.h>

#include "audio_file.h"

namespace {

// What tells a changed file from the one read: a tag update rewrites the file, so its
// modification time (and mostly its size) moves.
struct file_stamp {
    std::filesystem::file_time_type modified;
    std::uintmax_t size = 0;
    bool operator==(const file_stamp&) const = default;
};

std::optional<file_stamp> stamp_of(const std::string& path) {
    std::error_code ec;
    const std::filesystem::path p = hostkit::utf8_path(path);
    file_stamp s;
    s.modified = std::filesystem::last_write_time(p, ec);
    if (ec) return std::nullopt;
    s.size = std::filesystem::file_size(p, ec);
    if (ec) return std::nullopt;
    return s;
}

class file_track : public track_handle {
public:
    explicit file_track(std::string path) : path_(std::move(path)) {}

    const char* path() const override { return path_.c_str(); }
    std::uint32_t subsong() const override { return 0; }
    double length() const override { return current_info().length; }
    bool get_info(track_info& out) const override {
        out = current_info();
        return true;
    }

    // Who the file was at the first read; moved on by the host's own writes.
    std::optional<linux_audio::file_identity> first_identity() const {
        std::lock_guard<std::mutex> lock(mutex_);
        return first_;
    }
    void set_first_identity(const linux_audio::file_identity& id) {
        std::lock_guard<std::mutex> lock(mutex_);
        first_ = id;
    }

private:
    // Handles are shared between the main thread and the host's workers.
    track_info current_info() const {
        std::lock_guard<std::mutex> lock(mutex_);
        const std::optional<file_stamp> now = stamp_of(path_);
        if (!info_ || !now || now != stamp_) {
            // An unreadable or vanished file reads afresh, so the error names it.
            std::optional<linux_audio::file_identity> id;
            if (!first_) id = linux_audio::identity_of(path_);
            info_ = read_audio_file(path_);
            stamp_ = now;
            if (!first_) first_ = id;
        }
        return *info_;
    }

    const std::string path_;
    mutable std::mutex mutex_;
    mutable std::optional<track_info> info_;
    mutable std::optional<file_stamp> stamp_;
    mutable std::optional<linux_audio::file_identity> first_;
};

} // namespace

service_ref<track_handle> make_file_track(const std::string& path) { return make_service<file_track>(path); }

std::optional<linux_audio::file_identity> identity_when_read(const track_ref& track) {
    if (const auto* f = dynamic_cast<const file_track*>(track.get())) return f->first_identity();
    return std::nullopt;
}

void note_own_write(const track_ref& track) {
    if (auto* f = dynamic_cast<file_track*>(track.get())) f->set_first_identity(linux_audio::identity_of(track->path()));
}
