#pragma once
// The host's console: each line goes to a log file in the profile folder, to stderr when asked,
// and into a short in-memory history that diagnostics and tests read.

#include <cstdio>
#include <filesystem>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include <tunehall/console.h>

namespace hostkit {

class console_log : public console_receiver {
public:
    // `echo` writes an echoed line (without its newline); empty: straight to stderr.
    console_log(const std::filesystem::path& log_file, bool echo_to_stderr, std::function<void(const std::string&)> echo = {});
    ~console_log();
    void print(const char* text) override;
    // Every line printed so far.
    std::vector<std::string> lines() const;

private:
    mutable std::mutex lock_;
    std::FILE* file_ = nullptr;
    bool echo_;
    std::function<void(const std::string&)> echo_line_;
    std::vector<std::string> lines_;
};

} // namespace hostkit
