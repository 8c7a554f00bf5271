#include "console_log.h"

#include "file_util.h"

namespace hostkit {

console_log::console_log(const std::filesystem::path& log_file, bool echo_to_stderr, std::function<void(const std::string&)> echo)
    : echo_(echo_to_stderr), echo_line_(std::move(echo)) {
    if (!log_file.empty()) file_ = open_file(log_file, "ab");
}

console_log::~console_log() {
    if (file_) std::fclose(file_);
}

void console_log::print(const char* text) {
    std::lock_guard lock(lock_);
    lines_.emplace_back(text);
    if (file_) {
        std::fprintf(file_, "%s\n", text);
        std::fflush(file_);
    }
    if (!echo_) return;
    if (echo_line_)
        echo_line_(text);
    else
        std::fprintf(stderr, "%s\n", text);
}

std::vector<std::string> console_log::lines() const {
    std::lock_guard lock(lock_);
    return lines_;
}

} // namespace hostkit
