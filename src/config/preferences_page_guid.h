#pragma once
// The component's page in the host's preferences window: the page registers under it, and the
// tagger's "Settings..." opens it.

#include <tunehall/platform.h>

inline constexpr GUID preferences_page_guid = {0x09146411, 0xc26f, 0x4dba, {0xbe, 0x5c, 0xec, 0xd7, 0xb3, 0x9a, 0x48, 0xbc}};
