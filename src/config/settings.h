#pragma once
// The component's settings: the e-mail sent in the CDDB hello, whether the tagger wipes
// existing tags, and the server list (a blob under "discora.servers", loaded afresh per use).

#include "config/cfg_var.h"
#include "config/server_record.h"

extern cfg_string cfg_email;
extern cfg_int cfg_wipe_existing_tags;

// The default e-mail (a placeholder of this project's own).
extern const char* const default_email;

// Reads the server list from the store: missing -> the built-in server; unreadable -> the same.
server_list load_server_list();
// Writes `list` under "discora.servers"; vexa::exception_overflow when a field is too long.
void save_server_list(const server_list& list);
// The blob form of a list, and back (the load rules above).
std::string encode_server_list(const server_list& list);
server_list decode_server_list(const void* data, std::size_t size);
