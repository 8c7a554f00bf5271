#pragma once
// The tags of real audio files, for the host's tag update: read and written with TagLib, each
// write crash-safe and, when a journal is given, journaled for undo before the file changes.

#include <map>
#include <set>
#include <memory>

#include <hostkit/tag_update_engine.h>

#include "audio/audio_file.h"
#include "audio/staged_file_stream.h"
#include "undo_journal.h"

namespace linux_host {

class file_tag_io final : public hostkit::tag_io {
public:
    tag_record read_tags(const track_ref& track) override;
    void write_tags(const track_ref& track, const tag_record& tags) override;

    // The file exists, may be written (the file and its folder: a write goes through a new file
    // beside it) and is the file that was read: same device, inode, size and modification time.
    void check(const hostkit::planned_file& file) override;
    void begin_run(const hostkit::update_plan& plan) override;
    void end_run(bool complete) override;
    void restore(const hostkit::planned_file& file) override;

    // Journals every later run, under `command` and `album` (set before each update).
    void set_options(const tag_write_options& options) { options_ = options; }
    void set_journal(std::unique_ptr<undo_journal> journal) { journal_ = std::move(journal); }
    void describe_run(std::string command, std::string album) {
        command_ = std::move(command);
        album_ = std::move(album);
    }

private:
    void write_cue_tags(const track_ref& track, const tag_record& tags);

    tag_write_options options_;
    std::unique_ptr<undo_journal> journal_;
    std::string command_, album_;
    bool journaling_ = false;
    std::map<std::string, std::size_t> run_files_;  // path -> its number in the run
    std::set<std::size_t> journaled_;                // files whose old content the run has kept
    std::map<std::string, linux_audio::file_identity> read_;  // when the update read the tags
};

} // namespace linux_host
