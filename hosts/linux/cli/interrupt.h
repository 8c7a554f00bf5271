#pragma once
// Ctrl-C aborts the running background task through its abort source, as the progress
// window's Cancel would; a second Ctrl-C ends the program at once.

#include <hostkit/threaded_process_worker.h>

namespace tessellon_cli {

class interrupt_scope {
public:
    explicit interrupt_scope(hostkit::threaded_process_worker& tasks);
    ~interrupt_scope();
    interrupt_scope(const interrupt_scope&) = delete;
    interrupt_scope& operator=(const interrupt_scope&) = delete;
    // Whether Ctrl-C was pressed while the scope was active.
    static bool interrupted();
};

} // namespace tessellon_cli
