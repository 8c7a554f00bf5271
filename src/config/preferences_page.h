#pragma once
// The component's page in the host's preferences window: the e-mail sent in the CDDB hello and
// the server list, edited in a working copy that is stored only when the host asks the page to
// apply.

#include <tunehall/preferences_page.h>

// The page's name in the preferences tree; also the caption of its editor and its messages.
inline constexpr const char* preferences_page_name = "discora Tagger";

// Creates the page (dialog 101) inside `parent`, reporting changes to `callback`.
service_ref<preferences_page_instance> open_preferences_page(HWND parent, service_ref<preferences_page_callback> callback);
