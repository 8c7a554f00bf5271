#include "cli/interrupt.h"

#include <atomic>
#include <csignal>
#include <unistd.h>

#include "cli/command_line.h"

namespace tessellon_cli {

namespace {
// The one place a signal handler can reach: what to abort, and whether it happened.
std::atomic<int> g_scopes{0};
std::atomic<hostkit::threaded_process_worker*> g_target{nullptr};
std::atomic<bool> g_interrupted{false};
abort_source_impl g_abort;

extern "C" void on_interrupt(int) {
    if (g_scopes.load() == 0 || g_interrupted.exchange(true)) _exit(exit_nothing);
    g_abort.abort();
    if (auto* t = g_target.load()) t->abort_all();
}
} // namespace

void watch_interrupts() {
    struct sigaction action {};
    action.sa_handler = on_interrupt;
    action.sa_flags = 0;  // no SA_RESTART: a prompt's read returns at Ctrl-C
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
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
