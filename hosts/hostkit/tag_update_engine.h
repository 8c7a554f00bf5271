#pragma once
// The host's asynchronous tag update, on a worker under the progress display, in two phases:
// first every track's tags are read and the component's filter decides what they become (the
// plan); a gate the host may install (a preview, a question) then lets the write go ahead or not;
// every file to change is checked before the first one is written; then the files are written
// one by one. Abort stops between files. A file that fails midway makes the files already written
// go back to their old tags, so an album is tagged wholly or not at all. The outcome is a value
// (update_result) as well as the completion the component gets.

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <tunehall/tag_update.h>

namespace hostkit {

// One file of an update: its tags as read and as the filter leaves them.
struct planned_file {
    track_ref track;
    std::string path;
    tag_record before, after;
    bool changes = false;  // false: the file keeps its tags and is not written
};

struct update_plan {
    std::vector<planned_file> files;  // every track, in order
    std::size_t changing() const;
};

struct update_result {
    enum class outcome { written, nothing_to_write, declined, refused, interrupted, failed };
    outcome result = outcome::nothing_to_write;
    update_plan plan;
    std::vector<std::string> written;   // paths, in the order written (and still written)
    std::vector<std::string> problems;  // texts naming the file and what happened
    bool rolled_back = false;           // files written before a failure were put back
};

// Where the tags of a track's file are read and written (TagLib on Linux, a manifest's tag store
// in the Windows test host). Failures raise the i/o family naming the file.
class tag_io {
public:
    virtual ~tag_io() = default;
    virtual tag_record read_tags(const track_ref& track) = 0;
    virtual void write_tags(const track_ref& track, const tag_record& tags) = 0;

    // Raises, naming the file, when the track's file cannot be written or is no longer the one
    // that was read.
    virtual void check(const planned_file&) {}
    // Around the writes of one update: stores that keep a journal open it before the first
    // file changes and close it after the last one (`complete` false: stopped or failed).
    virtual void begin_run(const update_plan&) {}
    virtual void end_run(bool /*complete*/) {}
    // Puts a file written in this run back as it was.
    virtual void restore(const planned_file& file) { write_tags(file.track, file.before); }
};

class tag_update_engine : public tag_update {
public:
    // Sees the plan of every update and says whether to write it; called on the worker.
    using gate_fn = std::function<bool(const update_plan&)>;

    explicit tag_update_engine(tag_io& io) : io_(io) {}
    void update_async(const track_list& tracks, service_ref<tag_update_filter> filter, HWND parent,
                      std::uint32_t flags, service_ref<completion_notification> done, std::uint32_t task_id) override;

    void set_gate(gate_fn gate) { gate_ = std::move(gate); }
    // The outcome of the last update that finished (on the main thread).
    const std::optional<update_result>& last_result() const { return last_; }

    // The progress title of an update.
    static constexpr const char* progress_title = "Writing tags";

private:
    tag_io& io_;
    gate_fn gate_;
    std::optional<update_result> last_;
};

} // namespace hostkit
