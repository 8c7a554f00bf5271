#include "file_tag_io.h"

#include <sys/stat.h>
#include <fstream>
#include <iterator>
#include <unistd.h>

#include <tunehall/exceptions.h>

#include "audio/audio_file.h"
#include "audio/file_track.h"
#include "cue/cue_album.h"
#include "cue/cue_tag_store.h"

namespace linux_host {

using linux_audio::file_identity;
using linux_audio::identity_of;

// A track of an album kept as one audio file plus its cue sheet has its tags in the sheet, which
// is rewritten whole and atomically; it is neither journaled nor compared with the lookup's read.
tag_record file_tag_io::read_tags(const track_ref& track) {
    if (linux_cue::is_cue_track(*track)) return linux_cue::read_cue_tags(track->path(), track->subsong());
    const std::string path = track->path();
    file_identity before = identity_of(path);
    tag_record tags = read_audio_file(path).tags;
    read_[path] = before;
    return tags;
}

void file_tag_io::check(const hostkit::planned_file& file) {
    const std::string& path = file.path;
    if (linux_cue::is_cue_track(*file.track)) {
        if (::access(path.c_str(), W_OK) != 0) throw tunehall_io::exception_io_denied("Access denied: " + path + " is read-only");
        return;
    }
    const file_identity now = identity_of(path);
    // The lookup's read counts first: a file swapped after it but before the plan must not get
    // tags meant for the file that was looked up.
    std::optional<file_identity> then = identity_when_read(file.track);
    if (!then) {
        auto it = read_.find(path);
        if (it != read_.end()) then = it->second;
    }
    if (then && !(*then == now))
        throw tunehall_io::exception_io(path + ": the file changed after it was read (" +
                                        (then->inode != now.inode || then->device != now.device ? "another file"
                                         : then->size != now.size                               ? "size"
                                                                                                : "modification time") +
                                        ")");
    struct stat st {};
    // Marked read-only counts even for a user (root) whom the system would let write it.
    if (::access(path.c_str(), W_OK) != 0 || (::stat(path.c_str(), &st) == 0 && (st.st_mode & 0222) == 0))
        throw tunehall_io::exception_io_denied("Access denied: " + path + " is read-only");
    const std::size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
    if (::access(folder.c_str(), W_OK) != 0)
        throw tunehall_io::exception_io_denied("Access denied: " + path + ": its folder cannot be written");
}

void file_tag_io::begin_run(const hostkit::update_plan& plan) {
    run_files_.clear();
    journaled_.clear();
    std::vector<std::string> paths;
    for (const auto& f : plan.files) {
        // The tracks of a cue sheet share its file, which is journaled once.
        if (!f.changes || run_files_.count(f.path)) continue;
        run_files_[f.path] = paths.size();
        paths.push_back(f.path);
    }
    journaling_ = journal_ != nullptr;
    if (journaling_) journal_->begin(command_, album_, paths);
}

void file_tag_io::end_run(bool complete) {
    if (journaling_) journal_->end(complete);
    journaling_ = false;
}

void file_tag_io::write_tags(const track_ref& track, const tag_record& tags) {
    if (linux_cue::is_cue_track(*track)) return write_cue_tags(track, tags);
    const std::string path = track->path();
    auto it = run_files_.find(path);
    if (!journaling_ || it == run_files_.end()) {
        ::write_tags(path, tags, options_);
    } else {
        prepared_tag_write write = prepare_tag_write(path, tags, options_);
        const file_identity before = identity_of(path);
        journal_->record_before(it->second, before, write.new_size(), write.undo_layout());
        write.commit();
        journal_->record_written(it->second, identity_of(path));
    }
    note_own_write(track);
}

// A cue sheet is rewritten whole (atomically) for each of its tracks; before its first change in a
// run its whole old text goes into the journal, which is what puts it back.
void file_tag_io::write_cue_tags(const track_ref& track, const tag_record& tags) {
    const std::string path = track->path();
    auto it = run_files_.find(path);
    const bool journaled = journaling_ && it != run_files_.end();
    if (journaled && journaled_.insert(it->second).second) {
        std::ifstream in(path, std::ios::binary);
        const std::string old_text{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
        if (!in.good() && !in.eof()) throw tunehall_io::exception_io("Cannot read " + path);
        journal_->record_before(it->second, identity_of(path), -1,
                                {linux_audio::content_piece{-1, static_cast<std::int64_t>(old_text.size()), old_text}});
    }
    linux_cue::update_cue_tags(path, track->subsong(), [&](const tag_record&) { return tags; });
    if (journaled) journal_->record_written(it->second, identity_of(path));
}

void file_tag_io::restore(const hostkit::planned_file& file) {
    auto it = run_files_.find(file.path);
    if (!journaling_ || it == run_files_.end()) return hostkit::tag_io::restore(file);
    journal_->restore_from_current(it->second);
    note_own_write(file.track);
}

} // namespace linux_host
