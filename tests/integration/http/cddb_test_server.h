#pragma once
// What the HTTP tests share: the project's CDDB test server, request targets in the form the
// component sends them, and reading a body the way the component does (one byte at a time).

#include <string>
#include <vector>

#include <tunehall/stream.h>

#include "http/http_filesystem.h"
#include "support/local_server.h"

namespace http_tests {

inline const std::string cddb_server_script = "tests/servers/cddb_server.py";
inline const std::string cgi_path = "/~cddb/cddb.cgi";

// "/~cddb/cddb.cgi?cmd=<command>&hello=...&proto=6" for a command already in query form.
inline std::string cddb_target(const std::string& command) {
    return cgi_path + "?cmd=" + command + "&hello=ann+mailhost+sonatag2+0.9&proto=6";
}

inline std::string read_bytewise(file& f, abort_source& abort) {
    std::string body;
    char c;
    while (f.read(&c, 1, abort) == 1) body += c;
    return body;
}

// The whole body at `url`, through the host's HTTP handler.
inline std::string fetch(const std::string& url) {
    abort_source_dummy abort;
    file_ptr f = make_http_filesystem()->open(url.c_str(), filesystem::open_mode::read, abort);
    return read_bytewise(*f, abort);
}

} // namespace http_tests
