#pragma once
// Online tagging sources and tagging tools the host offers for a selection.

#include "service.h"
#include "track.h"

// How a tool's work ended: done (the review dialog opened, or the tags were written),
// nothing_found (the service has no match; the user was told), failed (the user was told why),
// aborted (by the user).
enum class tagging_outcome { done, nothing_found, failed, aborted };

// Told whether a tool finished its work (false on abort or failure).
class tagging_done : public service_base {
    TUNEHALL_SERVICE_CLASS(service_base, {0x9d4cdd9b, 0x86cb, 0x466b, {0x83, 0xed, 0x47, 0xf9, 0xdc, 0x9a, 0xe2, 0x3d}})
public:
    virtual void on_done(bool success) = 0;
    // The same with the reason. Tools call this; a host that needs only success or failure
    // implements on_done alone.
    virtual void on_outcome(tagging_outcome outcome) { on_done(outcome == tagging_outcome::done); }
};

class tagging_source : public service_base {
    TUNEHALL_SERVICE_CLASS(service_base, {0x148df8c9, 0xb455, 0x44ad, {0xbf, 0x23, 0x37, 0xe9, 0xa9, 0xa2, 0xc2, 0x03}})
public:
    // Name shown by the host ("MusicBrainz", "discora").
    virtual const char* name() = 0;
    // Icon resource id of the component.
    virtual int icon_id() = 0;
    // Ordering weight among sources.
    virtual double weight() = 0;
    // Interactive lookup: shows what was found for the user to review.
    virtual void lookup(const track_list& tracks, HWND parent, service_ref<tagging_done> done) = 0;
    // Looks up and writes at once, without a dialog.
    virtual void lookup_write(const track_list& tracks, HWND parent, service_ref<tagging_done> done) = 0;
};
