#pragma once
// A server record with every field given, for tests that compare or store whole records.

#include "config/server_record.h"

inline server_record make_server_record(const char* server, const char* protocol, const char* port,
                                        const char* address, const char* description) {
    server_record r;
    r.set_server(server);
    r.set_protocol(protocol);
    r.set_port(port);
    r.set_address(address);
    r.set_description(description);
    return r;
}
