#include "musicbrainz/tag_mapping.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

#include <tunehall/core.h>

namespace {

// Replaces the values of `name` where the field stands, or removes it when there are none.
void set_values(tag_record& tags, const char* name, const std::vector<std::string>& values) {
    if (values.empty()) {
        tags.remove_field(name);
        return;
    }
    const std::size_t at = tags.set_field(name, values.front());
    for (std::size_t v = 1; v < values.size(); ++v) tags.add_value(at, values[v]);
}

void set_text(tag_record& tags, const char* name, const std::string& value) {
    if (value.empty())
        tags.remove_field(name);
    else
        tags.set_field(name, value);
}

// Each track of the lookup gets the release's track at the same index; the host may call this
// on its worker, and nothing here changes after the hand-over.
class release_filter : public tag_update_filter {
public:
    release_filter(const track_list& tracks, std::shared_ptr<const musicbrainz_release> release)
        : tracks_(tracks), release_(std::move(release)) {
        for (std::size_t i = 0; i < tracks_.size(); ++i) index_.emplace(tracks_[i].get(), i);
    }

    bool apply(const track_ref& track, tag_record& tags) override {
        auto it = index_.find(track.get());
        if (it == index_.end() || it->second >= release_->tracks.size()) return false;
        apply_release_tags(tags, *release_, it->second);
        return true;
    }

private:
    track_list tracks_;  // keeps the handles the index is keyed by alive
    std::shared_ptr<const musicbrainz_release> release_;
    std::map<const track_handle*, std::size_t> index_;
};

} // namespace

void apply_release_tags(tag_record& tags, const musicbrainz_release& release, std::size_t index) {
    const musicbrainz_track& track = release.tracks.at(index);
    set_values(tags, "album artist", release.album_artist);
    set_text(tags, "album", release.title);
    set_text(tags, "date", release.date);
    set_text(tags, "title", track.title);
    set_values(tags, "artist", track.artist.empty() ? release.album_artist : track.artist);
    // A single disc says nothing worth a field, and whatever the file had stays.
    if (release.total_discs != 1) {
        if (release.total_discs != 0) tags.set_field("totaldiscs", std::to_string(release.total_discs));
        if (release.disc_number != 0) tags.set_field("discnumber", std::to_string(release.disc_number));
    }
}

void apply_musicbrainz_release(const track_list& tracks, std::shared_ptr<const musicbrainz_release> release,
                               HWND parent, service_ref<completion_notification> done) {
    auto filter = make_service<release_filter>(tracks, std::move(release));
    host_service<tag_update>()->update_async(tracks, filter, parent, 0, std::move(done), musicbrainz_update_task_id);
}
