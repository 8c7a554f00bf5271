#include "config/server_list_retrieval_filter.h"

#include <tunehall/core.h>

#include "cddb/protocol_handler.h"

supported_protocol_filter::supported_protocol_filter() = default;
supported_protocol_filter::~supported_protocol_filter() = default;

bool supported_protocol_filter::supports(const char* protocol) {
    if (!handlers_) handlers_ = all_services<protocol_handler>();
    for (auto& handler : *handlers_)
        if (handler->supports(protocol)) return true;
    return false;
}
