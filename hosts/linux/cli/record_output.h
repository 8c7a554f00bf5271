#pragma once
// How the command line shows CDDB entries and server records, as text and as JSON.

#include <string>

#include "cddb/disc_record.h"
#include "cli/json_writer.h"
#include "config/server_record.h"

namespace tessellon_cli {

// The record form of --json: the seven fields, length, revision, the various-artists flag and
// the tracks (unknown numbers as null).
void write_record_json(json_writer& json, const disc_record& record);
// The same for people: one field a line, then one line a track.
std::string record_text(const disc_record& record);

void write_server_json(json_writer& json, const server_record& server);
// "server:port": where a server is, as messages about it name it.
std::string server_place(const server_record& server);
// "server:port  address  description".
std::string server_text(const server_record& server);

} // namespace tessellon_cli
