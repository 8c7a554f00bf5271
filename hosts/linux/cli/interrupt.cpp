#include "cli/interrupt.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include "cli/command_line.h"

namespace tessellon_cli {

namespace {
// The one place a signal handler can reach: what to abort, and whether it happened.
std::atomic<int> g_scopes{0};
std::atomic<hostkit::threaded_process_worker*> g_target{nullptr};
std::atomic<bool> g_interrupted{false};
abort_source_impl g_abort;
// Written once by Ctrl-C and never drained: a prompt waits on it beside standard input, whichever
// thread the signal was delivered to and however close to the wait it came.
int g_wake[2] = {-1, -1};

extern "C" void on_interrupt(int) {
    if (g_scopes.load() == 0 || g_interrupted.exchange(true)) _exit(exit_nothing);
    const int saved = errno;
    [[maybe_unused]] ssize_t ignored = write(g_wake[1], "!", 1);
    errno = saved;
    g_abort.abort();
    if (auto* t = g_target.load()) t->abort_all();
}
} // namespace

void watch_interrupts() {
    if (pipe2(g_wake, O_CLOEXEC | O_NONBLOCK) != 0) g_wake[0] = g_wake[1] = -1;
    struct sigaction action {};
    action.sa_handler = on_interrupt;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
}

std::optional<std::string> read_answer() {
    std::string line;
    for (;;) {
        pollfd fds[2] = {{STDIN_FILENO, POLLIN, 0}, {g_wake[0], POLLIN, 0}};
        if (g_interrupted.load()) return std::nullopt;
        if (poll(fds, 2, -1) < 0) {
            if (errno == EINTR) continue;
            return std::nullopt;
        }
        if (fds[1].revents != 0) return std::nullopt;
        char c = 0;
        const ssize_t n = read(STDIN_FILENO, &c, 1);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return std::nullopt;
        if (c == '\n') return line;
        line += c;
    }
}

interrupt_scope::interrupt_scope(hostkit::threaded_process_worker* tasks) {
    if (tasks) g_target.store(tasks);
    g_scopes.fetch_add(1);
}

interrupt_scope::~interrupt_scope() {
    if (g_scopes.fetch_sub(1) == 1) g_target.store(nullptr);
}

abort_source& interrupt_scope::abort() { return g_abort; }

bool interrupt_scope::interrupted() { return g_interrupted.load(); }

} // namespace tessellon_cli
