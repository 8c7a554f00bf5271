#pragma once
// "Retrieve...": asks one server for the servers it knows (the CDDB "sites" command) under the
// host's progress dialog, and keeps those this component can reach.

#include <optional>

#include <tunehall/platform.h>

#include "config/server_record.h"

// Retrieves the server list of `source`; the progress dialog is owned by `progress_parent`. The
// reachable servers, in the order the server sent them, when there is at least one. Otherwise
// std::nullopt, and the user has been told why in a message box owned by `message_parent`
// (nothing is shown when the user cancelled).
std::optional<server_list> retrieve_server_list(const server_record& source, HWND progress_parent, HWND message_parent);
