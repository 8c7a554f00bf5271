#pragma once
// Progress of a background task on the terminal: the title and a bar on stderr, redrawn in
// place when stderr is a terminal; otherwise one line when the task ends.

#include <atomic>
#include <mutex>
#include <string>

#include <hostkit/threaded_process_worker.h>

namespace linux_host {

class terminal_progress final : public hostkit::progress_display {
public:
    terminal_progress();
    void begin(const std::string& title, std::uint32_t flags) override;
    void progress(std::uint32_t value) override;
    void item(const std::string& text) override;
    void end(bool aborted) override;
    // Writes a line of text to stderr; on a terminal above the bar, which is drawn again below.
    void print_line(const std::string& text);

private:
    void draw_locked();

    std::mutex lock_;
    bool tty_;
    std::string title_;
    std::string item_;
    std::uint32_t value_ = 0;
    int drawn_percent_ = -1;
    bool drawn_ = false;  // the bar is on the terminal's last line
};

} // namespace linux_host
