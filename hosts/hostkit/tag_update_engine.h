#pragma once
// The host's asynchronous tag update: on a worker under the progress display, each track's
// current tags are read, the component's filter changes them, and the files it changed are
// written. One file that cannot be read or written is named in the error and the others are
// still written; the completion (on the main thread) then reports failure.

#include <functional>
#include <optional>
#include <string>

#include <tunehall/tag_update.h>

namespace hostkit {

// Where the tags of a track's file are read and written (TagLib on Linux, a manifest's tag store
// in the Windows test host). Failures raise the i/o family naming the file.
class tag_io {
public:
    using change_fn = std::function<std::optional<tag_record>(const tag_record&)>;

    virtual ~tag_io() = default;
    virtual tag_record read_tags(const track_ref& track) = 0;
    virtual void write_tags(const track_ref& track, const tag_record& tags) = 0;
    // Reads the track's tags, lets `change` decide, and writes the record it returns (nothing
    // when it returns none). Stores that can keep the file open in between override this.
    virtual void update_tags(const track_ref& track, const change_fn& change) {
        if (std::optional<tag_record> changed = change(read_tags(track))) write_tags(track, *changed);
    }
};

class tag_update_engine : public tag_update {
public:
    explicit tag_update_engine(tag_io& io) : io_(io) {}
    void update_async(const track_list& tracks, service_ref<tag_update_filter> filter, HWND parent,
                      std::uint32_t flags, service_ref<completion_notification> done, std::uint32_t task_id) override;

    // The progress title of an update.
    static constexpr const char* progress_title = "Writing tags";

private:
    tag_io& io_;
};

} // namespace hostkit
