#include "file_tag_io.h"

#include "audio/audio_file.h"
#include "cue/cue_album.h"
#include "cue/cue_tag_store.h"

namespace linux_host {

// A track of an album kept as one audio file plus its cue sheet has its tags in the sheet.
tag_record file_tag_io::read_tags(const track_ref& track) {
    if (linux_cue::is_cue_track(*track)) return linux_cue::read_cue_tags(track->path(), track->subsong());
    return read_audio_file(track->path()).tags;
}

void file_tag_io::write_tags(const track_ref& track, const tag_record& tags) {
    if (linux_cue::is_cue_track(*track))
        linux_cue::update_cue_tags(track->path(), track->subsong(), [&](const tag_record&) { return tags; });
    else
        ::write_tags(track->path(), tags);
}

void file_tag_io::update_tags(const track_ref& track, const change_fn& change) {
    if (linux_cue::is_cue_track(*track))
        linux_cue::update_cue_tags(track->path(), track->subsong(), change);
    else
        ::update_tags(track->path(), change);
}

} // namespace linux_host
