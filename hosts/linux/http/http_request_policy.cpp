#include "http_request_policy.h"

#include <cstdlib>

namespace {

// Loopback addresses never go through a proxy: a proxy cannot reach the user's own machine
// and the project's local servers live there. Setting libcurl's no-proxy list replaces the
// environment's, so the user's list is kept in front.
std::string no_proxy_list() {
    std::string list;
    for (const char* name : {"no_proxy", "NO_PROXY"}) {
        if (const char* value = std::getenv(name); value && *value) {
            list = value;
            break;
        }
    }
    if (list == "*") return list;
    if (!list.empty()) list += ",";
    return list + "localhost,127.0.0.1,::1";
}

} // namespace

http_request_policy policy_for_url(const std::string& /*url*/) {
    http_request_policy policy;
    policy.no_proxy = no_proxy_list();
    return policy;
}
