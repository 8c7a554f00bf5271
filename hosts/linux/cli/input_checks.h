#pragma once
// What the user types, checked before any request is made or any setting stored. Each check
// raises usage_error naming the option and the rule.

#include <cstddef>
#include <optional>
#include <string>

namespace tessellon_cli {

// A host name or address: letters, digits, '-' and '.', or an IPv6 address in brackets; no
// scheme, port or path.
void check_host_name(const std::string& what, const std::string& host);
// A TCP port, 1 to 65535, as decimal text.
void check_port(const std::string& what, const std::string& port);
// A CGI address on the server: begins with "/", no spaces.
void check_address(const std::string& what, const std::string& address);
// An e-mail address of the form the CDDB hello carries: USER@HOST, the user part without
// spaces or '@', the host a host name.
void check_email(const std::string& address);
// A 1-based number, at least 1 (`what` names the option).
std::size_t parse_number(const std::string& what, const std::string& text);

// "http://HOST[:PORT][/ADDRESS]" taken apart; port and address are empty when not written.
struct server_url {
    std::string host, port, address;
};
// Whether `text` is written as a URL (has a scheme).
bool looks_like_url(const std::string& text);
server_url parse_server_url(const std::string& what, const std::string& url);

// TESSELLON_MUSICBRAINZ_HOST as HOST[:PORT], with or without "http://" in front and a "/" at
// the end; rewritten in the environment in the bare form the component and the HTTP policy
// read. Unset or empty: nothing to check.
void check_musicbrainz_host_override();

} // namespace tessellon_cli
