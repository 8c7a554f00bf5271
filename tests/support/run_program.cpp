#include "support/run_program.h"

#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

extern char** environ;

namespace testing_support {

program_result run_program(const std::vector<std::string>& argv, const std::vector<std::string>& extra_env,
                           const std::function<void(pid_t)>& while_running) {
    int out_pipe[2], err_pipe[2];
    if (pipe(out_pipe) != 0 || pipe(err_pipe) != 0) return {};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, out_pipe[1], 1);
    posix_spawn_file_actions_adddup2(&actions, err_pipe[1], 2);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addclose(&actions, out_pipe[0]);
    posix_spawn_file_actions_addclose(&actions, err_pipe[0]);

    std::vector<std::string> env_text;
    for (char** e = environ; *e; ++e) env_text.emplace_back(*e);
    env_text.insert(env_text.end(), extra_env.begin(), extra_env.end());
    std::vector<char*> env, args;
    for (auto& e : env_text) env.push_back(e.data());
    env.push_back(nullptr);
    std::vector<std::string> argv_copy = argv;
    for (auto& a : argv_copy) args.push_back(a.data());
    args.push_back(nullptr);

    pid_t pid = -1;
    int rc = posix_spawn(&pid, args[0], &actions, nullptr, args.data(), env.data());
    posix_spawn_file_actions_destroy(&actions);
    close(out_pipe[1]);
    close(err_pipe[1]);
    program_result result;
    if (rc != 0) {
        close(out_pipe[0]);
        close(err_pipe[0]);
        result.err = std::string("cannot start ") + argv[0] + ": " + std::strerror(rc);
        return result;
    }
    std::thread watcher;
    if (while_running) watcher = std::thread([&, pid] { while_running(pid); });

    pollfd fds[2] = {{out_pipe[0], POLLIN, 0}, {err_pipe[0], POLLIN, 0}};
    std::string* sinks[2] = {&result.out, &result.err};
    int open_count = 2;
    while (open_count > 0) {
        if (poll(fds, 2, -1) < 0) break;
        for (int i = 0; i < 2; ++i) {
            if (fds[i].fd < 0 || !(fds[i].revents & (POLLIN | POLLHUP))) continue;
            char buffer[4096];
            ssize_t n = read(fds[i].fd, buffer, sizeof buffer);
            if (n > 0) {
                sinks[i]->append(buffer, static_cast<std::size_t>(n));
            } else {
                close(fds[i].fd);
                fds[i].fd = -1;
                --open_count;
            }
        }
    }
    int status = 0;
    waitpid(pid, &status, 0);
    if (watcher.joinable()) watcher.join();
    result.exit_code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return result;
}

} // namespace testing_support
