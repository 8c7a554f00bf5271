#pragma once
// How the host makes each HTTP request. Every rule about talking to web servers (identity,
// time-outs, redirects, and later per-host rules such as a web service's request rate or
// retrying a busy answer) lives here, so that no caller has to know them.

#include <string>

struct http_request_policy {
    std::string user_agent = "Tessellon/0.9";
    long connect_timeout_seconds = 10;
    // A transfer that moves less than `low_speed_bytes` per second for this long is dead.
    // Kept long: CDDB servers may take a while over a query, and the user can always abort.
    long low_speed_bytes = 1;
    long low_speed_seconds = 60;
    long max_redirects = 10;
    // Hosts that are reached directly even when the environment names a proxy.
    std::string no_proxy;
};

// The policy for a request to `url`: the same for every host for now; the place where rules
// for one host (by its name in the URL) are added.
http_request_policy policy_for_url(const std::string& url);
