#include "file_tag_io.h"

#include "audio/audio_file.h"

namespace linux_host {

tag_record file_tag_io::read_tags(const track_ref& track) { return read_audio_file(track->path()).tags; }

void file_tag_io::write_tags(const track_ref& track, const tag_record& tags) { ::write_tags(track->path(), tags, options_); }

void file_tag_io::update_tags(const track_ref& track, const change_fn& change) { ::update_tags(track->path(), change, options_); }

} // namespace linux_host
