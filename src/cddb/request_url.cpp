#include "cddb/request_url.h"

#include <cstdio>

#include "host/module_info.h"

namespace {

// Taking bytes as signed is deliberate and kept: 0x80 and above count as control characters
// too, and their hex is that of the sign-extended value ("%ffffffe9" for 0xE9), the form this
// client's requests have always had.
bool needs_hex(char c) { return static_cast<signed char>(c) < 32; }

void append_hex(std::string& out, char c) {
    char text[12];
    int n = std::snprintf(text, sizeof text, "%%%02x",
                          static_cast<unsigned>(static_cast<int>(static_cast<signed char>(c))));
    out.append(text, static_cast<std::size_t>(n));
}

void append_escaped(std::string& out, std::string_view text, char space) {
    for (char c : text) {
        if (c == ' ')
            out += space;
        else if (needs_hex(c))
            append_hex(out, c);
        else
            out += c;
    }
}

} // namespace

void append_command_escaped(std::string& out, std::string_view command) { append_escaped(out, command, '+'); }

void append_hello_escaped(std::string& out, std::string_view part) { append_escaped(out, part, '_'); }

std::string cddb_request_url(const server_record& server, std::string_view command, std::string_view hello_user,
                             std::string_view hello_host) {
    std::string url = "http://";
    url += server.get_server();
    if (std::string_view(server.get_port()) != "80") {
        url += ':';
        url += server.get_port();
    }
    url += server.get_address();
    url += "?cmd=";
    append_command_escaped(url, command);
    url += "&hello=";
    append_hello_escaped(url, hello_user);
    url += '+';
    append_hello_escaped(url, hello_host);
    url += '+';
    append_hello_escaped(url, sonatag2::module_name);
    url += '+';
    append_hello_escaped(url, sonatag2::component_version_text);
    url += "&proto=6";
    return url;
}
