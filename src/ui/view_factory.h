#pragma once
// Makes the view of a dialog template: a real dialog on Windows, a headless one elsewhere.

#include <memory>

#include "ui/dialog_view.h"

// Creates the window of dialog template `template_id` owned by `parent`, reporting to
// `events`; `modal` dialogs register with the host's modal-dialog registry while they exist.
std::unique_ptr<dialog_view> create_dialog_view(int template_id, HWND parent, dialog_events& events);
