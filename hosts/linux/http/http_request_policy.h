#pragma once
// How the host makes each HTTP request. Every rule about talking to web servers (identity,
// time-outs, redirects, a web service's request rate, retrying a busy answer) lives here, so
// that no caller has to know them.

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>

struct http_request_policy {
    // Where the request goes: the URL asked for, or its https form for a service that answers
    // plain http only with a redirect there.
    std::string url;
    std::string user_agent = "Tessellon/0.9";
    long connect_timeout_seconds = 10;
    // Limits no real server comes near, so that a broken or hostile one costs a bounded time
    // and memory. Each ends the request with an error naming the server and the limit.
    // The whole request, from the first connection attempt to the last byte (redirects and
    // retries included): a server that trickles a valid answer must not hold a command forever.
    std::chrono::milliseconds deadline{std::chrono::seconds(30)};
    // No byte at all (not even a header) for this long: the server is gone.
    std::chrono::milliseconds stall{std::chrono::seconds(15)};
    // A whole CDDB answer or web-service document is a few hundred kilobytes at most.
    std::uint64_t max_answer_bytes = 8 * 1024 * 1024;
    // Line ends in one answer (0: not counted). A site list or a match list of this length is
    // already far beyond any real server's.
    std::size_t max_answer_lines = 10000;
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
// the program and a contact, one request a second, retries of busy answers, and no line
// count (its XML may be laid out over any number of lines); the public service itself is asked
// over https from the first request. `deadline` replaces the default one (the user's
// --timeout); the stall limit never exceeds it.
http_request_policy policy_for_url(const std::string& url);
http_request_policy policy_for_url(const std::string& url, std::chrono::milliseconds deadline);

// "host:port" of `url` as libcurl reads it, the port filled in from the scheme when not
// named; the URL itself when it cannot be read.
std::string origin_of(const std::string& url);

// How long to wait before retry number `retry` (0 for the first) of a busy answer, given the
// server's Retry-After in seconds (0 when it sent none).
std::chrono::milliseconds delay_before_retry(const http_request_policy& policy, int retry, long retry_after_seconds);
