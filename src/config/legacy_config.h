#pragma once
// The host's old-style configuration stream: entries of a 16-byte GUID, a u32 LE length and
// that many bytes of value. The client object reads it into the configuration variables and
// writes the legacy records out in the same form.

#include <tunehall/abort.h>
#include <tunehall/stream.h>

#include "host/registration.h"

// Hands each entry whose GUID names a variable on `list_head` to that variable; entries of
// unknown GUIDs are skipped. Stops where fewer than 16 bytes are left for a GUID.
void legacy_config_import(cfg_var_base* list_head, stream_reader& in, abort_source& abort);

// Writes every record on `list_head`; vexa::exception_overflow, before any byte of that
// record, for a value longer than a u32 can count.
void legacy_config_export(const cfg_legacy_record* list_head, stream_writer& out, abort_source& abort);
