#pragma once
// Ctrl-C. While an interrupt_scope is active, Ctrl-C aborts what the scope runs (its background
// tasks through their abort source, as the progress window's Cancel would; main-thread work
// through abort(); a prompt's read returns) and the command ends as aborted. Outside a scope it
// ends the program at once with the aborted status. A second Ctrl-C always ends the program.

#include <optional>
#include <string>

#include <tunehall/abort.h>

#include <hostkit/threaded_process_worker.h>

namespace tessellon_cli {

// Installs the handler; called once, before any command runs.
void watch_interrupts();

// One line typed at a prompt, without its end; nothing at end of input or when Ctrl-C was pressed
// while an interrupt_scope was active (also before the wait began).
std::optional<std::string> read_answer();

class interrupt_scope {
public:
    explicit interrupt_scope(hostkit::threaded_process_worker* tasks = nullptr);
    ~interrupt_scope();
    interrupt_scope(const interrupt_scope&) = delete;
    interrupt_scope& operator=(const interrupt_scope&) = delete;
    // Set by Ctrl-C: for work the command runs on its own thread.
    static abort_source& abort();
    // Whether Ctrl-C was pressed while a scope was active.
    static bool interrupted();
};

} // namespace tessellon_cli
