#pragma once
// The undo journal: one folder per tag-writing run in the profile's `journal` folder, numbered
// from 1 up, the last 50 kept. A run's `run` file (time, command, album, files) is synced before
// the first file changes; before each file changes, what rebuilds it byte for byte from the
// written file goes into `N.undo` (synced); after it changed, `N.done` holds the written file's
// size and time, and `complete` marks a run that wrote every file. A file put back has its
// `N.undo` renamed to `N.restored`; `undone` marks a run whose files are all back. An exclusive lock on
// `journal/lock` keeps two runs (or a run and an undo) from mixing.

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "audio/staged_file_stream.h"

namespace linux_host {

struct journal_run {
    int number = 0;
    std::string time, command, album;
    std::vector<std::string> files;
    bool complete = false;  // every file written
    bool undone = false;
};

// What an undo did, file by file.
struct undo_report {
    std::vector<std::string> restored;
    std::vector<std::string> left_alone;  // texts naming the file and why
    std::vector<std::string> failed;
};

class undo_journal {
public:
    static constexpr int kept_runs = 50;

    explicit undo_journal(std::filesystem::path folder) : folder_(std::move(folder)) {}
    ~undo_journal();
    undo_journal(const undo_journal&) = delete;
    undo_journal& operator=(const undo_journal&) = delete;

    // Starts a run; raises naming the journal when it cannot be written (before any file changes).
    void begin(const std::string& command, const std::string& album, const std::vector<std::string>& files);
    void record_before(std::size_t file, const linux_audio::file_identity& old, std::int64_t new_size,
                       const linux_audio::content_layout& undo);
    void record_written(std::size_t file, const linux_audio::file_identity& now);
    void end(bool complete);
    // Puts back file `file` of the run begun last, written in it (rolling back a failed run).
    void restore_from_current(std::size_t file);

    // The runs kept, oldest first.
    std::vector<journal_run> runs() const;
    // Restores run `number` (0: the last one not undone yet). A file changed since it was written
    // is left alone unless `force`. Raises when there is no such run.
    undo_report undo(int number, bool force);

private:
    std::filesystem::path run_folder(int number) const;
    void lock();
    void unlock();
    bool restore_file(const std::filesystem::path& run, std::size_t file, bool force, undo_report& report);

    std::filesystem::path folder_;
    int lock_fd_ = -1;
    int current_ = 0;
    std::vector<std::string> files_;  // of the current run
};

} // namespace linux_host
