#include "tagger/tag_writer.h"

#include <map>
#include <utility>
#include <vector>

#include <tunehall/core.h>

#include "tagger/tag_sets.h"

namespace {

// What a keeping update clears before adding its own fields. The list is fixed behaviour, odd
// parts included: it drops "year" (which the tagger never writes: it writes "date"), and it leaves
// "date" and "totaltracks" alone, so an old "date" survives a match without a year.
constexpr const char* fields_replaced_when_keeping[] = {"album artist", "artist", "album", "genre",
                                                        "year", "tracknumber", "title", "comment"};

// The prepared tags of each track, handed to the host; called once per track, possibly on the
// host's worker, and never changed after the hand-over (so no lock).
class prepared_tags_filter : public tag_update_filter {
public:
    prepared_tags_filter(const track_list& tracks, std::vector<tag_record> sets, bool wipe)
        : tracks_(tracks), wipe_(wipe) {
        for (std::size_t i = 0; i < tracks_.size() && i < sets.size(); ++i)
            sets_.insert_or_assign(tracks_[i].get(), std::move(sets[i]));
    }

    bool apply(const track_ref& track, tag_record& tags) override {
        auto it = sets_.find(track.get());
        if (it == sets_.end()) return false;
        apply_prepared_tags(tags, it->second, wipe_);
        return true;
    }

private:
    track_list tracks_;  // keeps the handles the map is keyed by alive
    std::map<const track_handle*, tag_record> sets_;
    bool wipe_;
};

} // namespace

void apply_prepared_tags(tag_record& tags, const tag_record& prepared, bool wipe) {
    if (wipe) {
        tags.copy_fields_from(prepared);
        return;
    }
    for (const char* name : fields_replaced_when_keeping) tags.remove_field(name);
    for (std::size_t f = 0; f < prepared.field_count(); ++f) {
        if (prepared.value_count(f) == 0) continue;
        std::size_t at = tags.set_field(prepared.field_name(f).c_str(), prepared.value(f, 0));
        for (std::size_t v = 1; v < prepared.value_count(f); ++v) tags.add_value(at, prepared.value(f, v));
    }
}

void start_tag_update(const disc_record& record, const track_list& tracks, bool wipe, HWND parent,
                      service_ref<completion_notification> done) {
    auto filter = make_service<prepared_tags_filter>(tracks, build_track_tag_sets(record, record.get_track_count()), wipe);
    host_service<tag_update>()->update_async(tracks, filter, parent, 0, std::move(done), tagger_update_task_id);
}
