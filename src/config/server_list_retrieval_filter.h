#pragma once
// Which server protocols this component can reach: those that some registered protocol_handler
// supports. Decides both which rows the preferences list shows and which retrieved sites are kept.

#include <optional>
#include <vector>

#include <tunehall/service.h>

class protocol_handler;

class supported_protocol_filter {
public:
    supported_protocol_filter();
    ~supported_protocol_filter();
    supported_protocol_filter(const supported_protocol_filter&) = delete;
    supported_protocol_filter& operator=(const supported_protocol_filter&) = delete;

    // Whether some handler supports `protocol`. The handlers are enumerated once, on the first
    // call, and asked in the host's order.
    bool supports(const char* protocol);

private:
    // One filter serves one thread: a task on its worker, or one refill on the main thread.
    std::optional<std::vector<service_ref<protocol_handler>>> handlers_;
};
