#pragma once
// Context-menu commands on a selection of tracks.

#include <cstddef>

#include "service.h"
#include "track.h"

class menu_command : public service_base {
    TUNEHALL_SERVICE_CLASS(service_base, {0x6621c4de, 0x5724, 0x412a, {0x85, 0xff, 0x63, 0xda, 0x4f, 0xf1, 0x47, 0x96}})
public:
    // Number of commands this service offers.
    virtual std::size_t command_count() = 0;
    // Name shown in the menu.
    virtual const char* command_name(std::size_t index) = 0;
    // Group the command appears under by default ("Tagging", ...).
    virtual const char* command_group(std::size_t index) = 0;
    // One-line description for the status bar.
    virtual const char* command_description(std::size_t index) = 0;
    // Runs the command on the selection (main thread).
    virtual void command_execute(std::size_t index, const track_list& selection, HWND parent) = 0;
};
