#pragma once
// The "MusicBrainz Lookup" dialog: the chosen release in two editable lists. "Save" writes the
// release as the lists show it into the tracks; "Cancel" writes nothing. Modeless: it deletes
// itself when it closes.

#include <memory>
#include <stdexcept>

#include <tunehall/platform.h>
#include <tunehall/tagging_source.h>
#include <tunehall/track.h>

#include "musicbrainz/release.h"
#include "ui/dialog_view.h"

// Opens the dialog owned by `parent` on `release`, looked up for `tracks`; `done` (may be empty)
// hears false when the dialog closed without saving, and after "Save" whether the tags were
// written. Raises the
// window system's error when the window cannot be made.
void open_release_dialog(HWND parent, const track_list& tracks, std::shared_ptr<const musicbrainz_release> release,
                         service_ref<tagging_done> done = {});

// The release as the dialog's lists show it, on top of `base` (which the lists do not show
// everything of). Raises ZR::invalid_input / ZR::overflow for a "Disc" text that is not
// "n/m" in digits.
musicbrainz_release release_from_lists(const dialog_view& view, const musicbrainz_release& base);
