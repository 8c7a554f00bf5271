#pragma once
// The abort source: long work polls it and stops with exception_aborted once it is set.

#include <atomic>

#include "exceptions.h"

class abort_source {
public:
    // True once the user (or the host) asked the work to stop.
    virtual bool is_aborting() const = 0;
    // Raises tunehall_io::exception_aborted when aborting.
    void check() const { if (is_aborting()) throw tunehall_io::exception_aborted(); }

protected:
    ~abort_source() = default;
};

// An abort source that can be set from any thread.
class abort_source_impl final : public abort_source {
public:
    bool is_aborting() const override { return flag_.load(std::memory_order_acquire); }
    void abort() { flag_.store(true, std::memory_order_release); }
    void reset() { flag_.store(false, std::memory_order_release); }

private:
    std::atomic<bool> flag_{false};
};

// An abort source that never aborts (for work the user cannot cancel).
class abort_source_dummy final : public abort_source {
public:
    bool is_aborting() const override { return false; }
};
