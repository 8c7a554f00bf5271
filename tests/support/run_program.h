#pragma once
// Runs a program as a user would from a shell and keeps what it printed and how it ended.

#include <functional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace testing_support {

struct program_result {
    int exit_code = -1;  // -1 when it did not exit normally
    std::string out;
    std::string err;
};

// Runs `argv` (argv[0] is the program's path) with `extra_env` ("NAME=value") added to the
// environment. `while_running`, when given, is called with the child's process id once it has
// started (on another thread), for example to send it a signal.
program_result run_program(const std::vector<std::string>& argv, const std::vector<std::string>& extra_env = {},
                           const std::function<void(pid_t)>& while_running = {});

} // namespace testing_support
