#include "cddb/response_handler.h"

#include <string>

#include <tunehall/exceptions.h>

namespace {
bool is_digit(char c) { return c >= '0' && c <= '9'; }
} // namespace

void response_handler::on_line(std::string_view line) {
    switch (state_) {
    case awaiting_status: {
        if (line.size() < 4 || !is_digit(line[0]) || !is_digit(line[1]) || !is_digit(line[2]) || line[3] != ' ')
            throw tunehall_io::exception_io_data("Malformed status code: " + std::string(line.substr(0, 3)));
        unsigned code = static_cast<unsigned>((line[0] - '0') * 100 + (line[1] - '0') * 10 + (line[2] - '0'));
        body_pending_ = on_status(code, line.substr(4));
        state_ = body_pending_ ? reading_body : done;
        return;
    }
    case reading_body:
        body_pending_ = false;
        if (line == ".")
            state_ = done;
        else
            on_body_line(line);
        return;
    case done:
        return;
    }
}

void response_handler::on_finish() {
    // An announced body that never came, or no answer at all (not even a status line: an empty
    // reply would otherwise finish as an empty entry), is malformed.
    if (body_pending_ || state_ == awaiting_status) throw tunehall_io::exception_io_data();
    on_end();
}

void response_handler::fail_entry_corrupt() { throw tunehall_io::exception_io_data("CDDB: Database entry is corrupt"); }

void response_handler::fail_no_handshake() { throw tunehall_io::exception_io("CDDB: No handshake"); }
