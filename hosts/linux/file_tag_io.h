#pragma once
// The tags of real audio files, for the host's tag update: read and written with TagLib.

#include <hostkit/tag_update_engine.h>

#include "audio/audio_file.h"

namespace linux_host {

class file_tag_io final : public hostkit::tag_io {
public:
    tag_record read_tags(const track_ref& track) override;
    void write_tags(const track_ref& track, const tag_record& tags) override;
    // One open per file: read, decide, save.
    void update_tags(const track_ref& track, const change_fn& change) override;
    void set_options(const tag_write_options& options) { options_ = options; }

private:
    tag_write_options options_;
};

} // namespace linux_host
