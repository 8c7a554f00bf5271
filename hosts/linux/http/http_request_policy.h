#pragma once
// How the host makes each HTTP request. Every rule about talking to web servers (identity,
// time-outs, redirects, a web service's request rate, retrying a busy answer) lives here, so
// that no caller has to know them.

#include <chrono>
#include <string>

struct http_request_policy {
    // Where the request goes: the URL asked for, or its https form for a service that answers
    // plain http only with a redirect there.
    std::string url;
    std::string user_agent = "Tessellon/0.9";
    long connect_timeout_seconds = 10;
    // A transfer that moves less than `low_speed_bytes` per second for this long is dead.
    // Kept long: CDDB servers may take a while over a query, and the user can always abort.
    long low_speed_bytes = 1;
    long low_speed_seconds = 60;
    long max_redirects = 10;
    // False: the caller follows redirects itself, one request at a time, so that each hop
    // waits its turn at the rate gate (libcurl would follow them unpaced).
    bool follow_redirects = true;
    // Hosts that are reached directly even when the environment names a proxy.
    std::string no_proxy;

    // The shortest time between the starts of two requests to the service `rate_key` names
    // (its host, whatever the scheme or port), counted over the whole process; zero: no limit.
    std::chrono::milliseconds min_interval{0};
    std::string rate_key;

    // How often an answer of 503 (the service is busy) is asked again before it counts as the
    // answer. The first retry waits `first_backoff`, each further one twice as long as the one
    // before, unless the server names its own Retry-After (then at most `max_retry_after`).
    int retries_on_503 = 0;
    std::chrono::milliseconds first_backoff{1000};
    std::chrono::seconds max_retry_after{30};
};

// The policy for a request to `url`. The MusicBrainz web service (the host in
// TESSELLON_MUSICBRAINZ_HOST, else musicbrainz.org) gets its own rules: a User-Agent naming
// the program and a contact, one request a second, and retries of busy answers; the public
// service itself is asked over https from the first request.
http_request_policy policy_for_url(const std::string& url);

// How long to wait before retry number `retry` (0 for the first) of a busy answer, given the
// server's Retry-After in seconds (0 when it sent none).
std::chrono::milliseconds delay_before_retry(const http_request_policy& policy, int retry, long retry_after_seconds);
