#pragma once
// The host's asynchronous tag update: reads each track's tags, lets a filter change them,
// writes the files the filter changed, and reports completion on the main thread.

#include <cstdint>

#include "platform.h"
#include "service.h"
#include "track.h"

class tag_update_filter : public service_base {
    TUNEHALL_SERVICE_CLASS(service_base, {0x0068bf25, 0x2793, 0x4ab6, {0x94, 0x42, 0x77, 0xd6, 0xc0, 0x0f, 0x92, 0x7c}})
public:
    // Changes `tags` of `track` in place; true when the file must be written.
    virtual bool apply(const track_ref& track, tag_record& tags) = 0;
};

class completion_notification : public service_base {
    TUNEHALL_SERVICE_CLASS(service_base, {0xfe4e5fbf, 0x54aa, 0x4e53, {0xb4, 0xf7, 0x3f, 0x2b, 0x81, 0x7b, 0x8a, 0x93}})
public:
    // Result codes of an update.
    enum : std::uint32_t { result_success = 0, result_aborted = 1, result_failure = 2 };
    // Called once, on the main thread.
    virtual void on_completion(std::uint32_t task_id, std::uint32_t result) = 0;
};

class tag_update : public service_base {
    TUNEHALL_SERVICE_CLASS(service_base, {0x2fe53d3e, 0xf82f, 0x41d4, {0xb4, 0xb5, 0x76, 0x28, 0xdd, 0xc0, 0x26, 0x2f}})
public:
    // Starts the update and returns at once; `done` (may be empty) is called with `task_id`.
    virtual void update_async(const track_list& tracks, service_ref<tag_update_filter> filter,
                              HWND parent, std::uint32_t flags,
                              service_ref<completion_notification> done,
                              std::uint32_t task_id) = 0;
};
