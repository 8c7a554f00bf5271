#pragma once
// The controls of the preferences page's template and of the server editor's, by resource id.

#include "resources/resource.h"

namespace preferences_controls {

constexpr int dialog_template = IDD_PREFERENCES;

constexpr int email_field = IDC_PREFS_EMAIL;
constexpr int server_list_view = IDC_PREFS_SERVERS;  // "Server" / "Description"
constexpr int add_button = IDC_PREFS_ADD;
constexpr int edit_button = IDC_PREFS_EDIT;
constexpr int remove_button = IDC_PREFS_REMOVE;
constexpr int retrieve_button = IDC_PREFS_RETRIEVE;

// The server name is a row's first column, given when the row is added.
constexpr int description_column = 1;

} // namespace preferences_controls

namespace server_editor_controls {

constexpr int dialog_template = IDD_SERVER_EDITOR;

constexpr int ok_button = IDC_EDITOR_OK;
constexpr int cancel_button = IDC_EDITOR_CANCEL;  // also the window's close request
constexpr int protocol_list = IDC_EDITOR_PROTOCOL;
constexpr int server_field = IDC_EDITOR_SERVER;
constexpr int port_field = IDC_EDITOR_PORT;
constexpr int address_field = IDC_EDITOR_ADDRESS;
constexpr int description_field = IDC_EDITOR_DESCRIPTION;

} // namespace server_editor_controls
