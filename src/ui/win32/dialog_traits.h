#pragma once
// What the window layer does per dialog template beyond binding its controls: extra frame
// style, how controls follow a resize, the smallest size, auto-completion of text boxes, and how
// the in-place editor of each list column behaves, caption fonts, and whether the owner is
// disabled while the dialog is open.

#include <cstdint>
#include <string>
#include <vector>

#include "ui/resize_layout.h"

struct auto_complete_field {
    int edit;           // control id
    const char* field;  // the host's field name ("artist", ...)
};

struct cell_editor_setup {
    int list;
    int column;
    std::uint32_t options;    // in_place::options
    const char* field;        // suggestions for the editor, or null
};

struct dialog_traits {
    int template_id;
    bool modal_frame = false;              // add the modal-frame extended style at creation
    std::vector<anchor_factors> anchors;   // controls that follow a resize
    int min_width_dlu = 0, min_height_dlu = 0;
    bool size_grip = false;
    std::vector<auto_complete_field> auto_complete;
    std::vector<cell_editor_setup> cell_editors;
    // Separator captions drawn in a bold variant of the dialog's font.
    std::vector<int> caption_fonts;
    // Modal on Windows: the owner window is disabled from show() until the dialog is destroyed.
    bool disables_owner = false;
};

// The control id the view gives the size grip it adds.
int dialog_size_grip_id();

// The traits of template `id` (a template without any gets plain ones).
const dialog_traits& traits_of(int template_id);
