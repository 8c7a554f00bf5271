#pragma once
// The "discora tagger" dialog: the matches of one lookup, the chosen match's disc and track
// texts for editing, and "Update files", which writes them to the tracks. Modeless: it lives
// until the user closes it or an update succeeds, then deletes itself.

#include <tunehall/platform.h>
#include <tunehall/service.h>

#include "cddb/lookup_state.h"

// Opens a tagger dialog owned by `parent` on the result of a finished lookup, and hands its window
// to the host's modeless window manager. Returns at once.
void open_tagger_dialog(HWND parent, service_ref<lookup_state> state);
