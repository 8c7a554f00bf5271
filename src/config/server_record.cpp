#include "config/server_record.h"

#include <cstring>
#include <utility>

void server_record::assign(std::string& field, const char* text, std::size_t length) {
    if (!text) {
        field.clear();
        return;
    }
    if (length == npos) {
        field.assign(text);
        return;
    }
    // A bounded text still ends at a NUL: callers pass fixed-size buffers that may be padded.
    const void* nul = std::memchr(text, '\0', length);
    field.assign(text, nul ? static_cast<std::size_t>(static_cast<const char*>(nul) - text) : length);
}

void default_server_record(server_record& out) {
    // A reserved top-level domain: the placeholder can never reach a stranger's machine.
    out.set_server("cddb.tessellon.invalid");
    out.set_protocol("http");
    out.set_port("80");
    out.set_address("/~cddb/cddb.cgi");
    out.set_description("discora server");
}

void reset_server_list(server_list& list) {
    list.clear();
    server_record record;
    default_server_record(record);
    list.push_back(std::move(record));
}
