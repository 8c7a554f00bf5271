#include "cli/interrupt.h"

#include <atomic>
#include <csignal>

namespace tessellon_cli {

namespace {
// The one place a signal handler can reach: the worker to abort, and whether it happened.
std::atomic<hostkit::threaded_process_worker*> g_target{nullptr};
std::atomic<bool> g_interrupted{false};

extern "C" void on_interrupt(int) {
    g_interrupted.store(true);
    if (auto* t = g_target.load()) t->abort_all();
}
} // namespace

interrupt_scope::interrupt_scope(hostkit::threaded_process_worker& tasks) {
    g_target.store(&tasks);
    struct sigaction action {};
    action.sa_handler = on_interrupt;
    action.sa_flags = SA_RESETHAND;  // the second Ctrl-C ends the program
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
}

interrupt_scope::~interrupt_scope() {
    signal(SIGINT, SIG_DFL);
    g_target.store(nullptr);
}

bool interrupt_scope::interrupted() { return g_interrupted.load(); }

} // namespace tessellon_cli
