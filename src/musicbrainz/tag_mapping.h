#pragma once
// Writing a MusicBrainz release into the tracks' tags through the host's tag update.

#include <cstdint>
#include <memory>

#include <tunehall/platform.h>
#include <tunehall/tag_record.h>
#include <tunehall/tag_update.h>
#include <tunehall/tagging_source.h>

#include "musicbrainz/release.h"

// The task id of the updates started here.
constexpr std::uint32_t musicbrainz_update_task_id = 0x4d42a7c3;

// Puts the release onto the tags of the track at `index` of the lookup: album artist, album,
// date, title and artist (the album artists when the track names none), each removed when its
// value is empty; disc number and total only for a release of more than one disc, and only
// when not zero. Nothing else changes.
void apply_release_tags(tag_record& tags, const musicbrainz_release& release, std::size_t index);

// Passes the result of the update started here on to whoever started the lookup.
class update_reporter : public completion_notification {
public:
    explicit update_reporter(service_ref<tagging_done> done) : done_(std::move(done)) {}
    void on_completion(std::uint32_t task_id, std::uint32_t result) override {
        if (task_id != musicbrainz_update_task_id || !done_) return;
        done_->on_outcome(result == result_success   ? tagging_outcome::done
                          : result == result_aborted ? tagging_outcome::aborted
                                                     : tagging_outcome::failed);
    }

private:
    service_ref<tagging_done> done_;
};

// Starts the host's update of `tracks` from `release` (the i-th track gets the release's i-th
// track) and returns at once; `done` (may be empty) hears the result.
void apply_musicbrainz_release(const track_list& tracks, std::shared_ptr<const musicbrainz_release> release,
                               HWND parent, service_ref<completion_notification> done = {});
