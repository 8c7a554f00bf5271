#pragma once
// A connection to one CDDB server, found among the registered handlers by the server's
// protocol. Each request to the registry yields a fresh instance; once opened it is one
// connection, used by one thread at a time.

#include <string_view>

#include <tunehall/abort.h>
#include <tunehall/service.h>
#include <tunehall/track.h>

#include "cddb/query_handler.h"
#include "cddb/read_handler.h"
#include "cddb/response_handler.h"
#include "cddb/sites_handler.h"
#include "config/server_record.h"

class protocol_handler : public service_base {
    TUNEHALL_SERVICE_CLASS(service_base, {0x75c1bf45, 0x90aa, 0x4cbf, {0xa4, 0x05, 0xf7, 0xa5, 0x12, 0x54, 0x55, 0xed}})
public:
    // Whether this handler speaks `protocol` (such as "http").
    virtual bool supports(const char* protocol) = 0;
    // Sets the connection up for `server`; no traffic yet.
    virtual void open(const server_record& server) = 0;

    // The commands, each one exchange through send. Failures are the host's i/o family with the
    // text the user sees.
    // "sites": every server the server lists.
    virtual void sites(const site_receiver& receiver, abort_source& abort);
    // "cddb lscat": sent for completeness; its answer is not read.
    virtual void lscat(abort_source& abort);
    // "cddb query" for the disc that `tracks` make up, every match to `receiver`.
    virtual void query(const track_list& tracks, const match_receiver& receiver, abort_source& abort);
    // "cddb read": the entry `discid` of `category`.
    virtual void read(std::string_view category, std::string_view discid, const record_receiver& receiver,
                      abort_source& abort);

    // One exchange: sends `command` and feeds the answer's lines to `handler`.
    virtual void send(std::string_view command, response_handler& handler, abort_source& abort) = 0;
    // A new, unopened instance of the same class.
    virtual service_ref<protocol_handler> create_instance() = 0;
};

// An opened connection for `server`: the first registered handler, in the host's order, that
// supports the server's protocol. exception_service_not_found when none does.
service_ref<protocol_handler> open_protocol_handler(const server_record& server);
