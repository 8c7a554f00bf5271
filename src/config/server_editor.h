#pragma once
// The server editor (dialog 104): a small modal dialog over one server_record. It never checks
// what the user typed; a bad entry fails later, when a lookup uses it.

#include <tunehall/platform.h>

#include "config/server_record.h"

enum class server_editor_mode { add, edit };

// Runs the editor modally, owned by `parent`, on `record`: OK writes the fields back into
// `record` (its protocol is never touched) and returns true; Cancel or closing the window leaves
// `record` as it was and returns false.
bool run_server_editor(HWND parent, server_record& record, server_editor_mode mode);
