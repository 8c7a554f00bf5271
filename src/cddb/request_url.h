#pragma once
// The address of one CDDB exchange over HTTP: the server's CGI path with the command, the
// hello and the protocol level in the query string.

#include <string>
#include <string_view>

#include "config/server_record.h"

// "http://" server [":" port] address "?cmd=" command "&hello=" user "+" host "+" client "+"
// version "&proto=6". The port is left out only when it is exactly "80".
std::string cddb_request_url(const server_record& server, std::string_view command, std::string_view hello_user,
                             std::string_view hello_host);

// A command for the query string: a space becomes "+", control characters and bytes of 0x80 and
// above become "%" and hex.
void append_command_escaped(std::string& out, std::string_view command);
// A hello part: as a command, but a space becomes "_" (a "+" there separates the parts).
void append_hello_escaped(std::string& out, std::string_view part);
