#pragma once
// Waiting that the user can cut short: for the turn of a paced request and for the back-off
// before a retry.

#include <chrono>

#include <tunehall/abort.h>

// Returns at `deadline`; raises tunehall_io::exception_aborted as soon as `abort` is set.
void abortable_wait_until(std::chrono::steady_clock::time_point deadline, abort_source& abort);
