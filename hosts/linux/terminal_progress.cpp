#include "terminal_progress.h"

#include <cstdio>
#include <unistd.h>

namespace linux_host {

terminal_progress::terminal_progress() : tty_(isatty(STDERR_FILENO) == 1) {}

void terminal_progress::begin(const std::string& title, std::uint32_t) {
    std::lock_guard lock(lock_);
    title_ = title;
    item_.clear();
    value_ = 0;
    drawn_percent_ = -1;
    if (tty_) draw_locked();
}

void terminal_progress::progress(std::uint32_t value) {
    std::lock_guard lock(lock_);
    value_ = value;
    if (tty_) draw_locked();
}

void terminal_progress::item(const std::string& text) {
    std::lock_guard lock(lock_);
    item_ = text;
}

void terminal_progress::end(bool aborted) {
    std::lock_guard lock(lock_);
    if (tty_) std::fputs("\r\033[K", stderr);
    drawn_ = false;
    std::fprintf(stderr, "%s: %s\n", title_.c_str(), aborted ? "aborted" : "done");
}

void terminal_progress::print_line(const std::string& text) {
    std::lock_guard lock(lock_);
    if (!drawn_) {
        std::fprintf(stderr, "%s\n", text.c_str());
        return;
    }
    std::fprintf(stderr, "\r\033[K%s\n", text.c_str());
    drawn_percent_ = -1;
    draw_locked();
}

// Redraws only when the whole percentage changes: a terminal is slow to write to.
void terminal_progress::draw_locked() {
    int percent = static_cast<int>(value_ / 50);
    if (percent == drawn_percent_) return;
    drawn_percent_ = percent;
    constexpr int width = 30;
    int filled = percent * width / 100;
    std::string bar(static_cast<std::size_t>(filled), '#');
    bar.append(static_cast<std::size_t>(width - filled), '.');
    std::fprintf(stderr, "\r\033[K%s [%s] %3d%%", title_.c_str(), bar.c_str(), percent);
    drawn_ = true;
    std::fflush(stderr);
}

} // namespace linux_host
