#include "cddb/protocol_handler.h"

#include <string>

#include <tunehall/core.h>

#include "cddb/lscat_handler.h"
#include "cddb/toc.h"

void protocol_handler::sites(const site_receiver& receiver, abort_source& abort) {
    sites_handler handler(receiver);
    send("sites", handler, abort);
}

void protocol_handler::lscat(abort_source& abort) {
    lscat_handler handler;
    send("cddb lscat", handler, abort);
}

void protocol_handler::query(const track_list& tracks, const match_receiver& receiver, abort_source& abort) {
    std::string command = cddb_query_text(tracks);
    query_handler handler(receiver);
    send(command, handler, abort);
}

void protocol_handler::read(std::string_view category, std::string_view discid, const record_receiver& receiver,
                            abort_source& abort) {
    std::string command = "cddb read ";
    command += category;
    command += ' ';
    command += discid;
    read_handler handler(category, receiver);
    send(command, handler, abort);
}

service_ref<protocol_handler> open_protocol_handler(const server_record& server) {
    for (auto& handler : all_services<protocol_handler>()) {
        if (handler->supports(server.get_protocol())) {
            handler->open(server);
            return handler;
        }
    }
    throw exception_service_not_found();
}
