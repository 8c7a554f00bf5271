#include "http_request_policy.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string_view>

#include <curl/curl.h>

namespace {

// The web service asks every client to name itself and a way to reach its developers, and
// blocks clients that do not.
constexpr std::string_view contact = "https://tessellon.invalid/contact";

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

// The same choice the component makes when it builds its request URLs.
std::string musicbrainz_host() {
    const char* chosen = std::getenv("TESSELLON_MUSICBRAINZ_HOST");
    return chosen && *chosen ? chosen : "musicbrainz.org";
}

struct host_and_port {
    std::string scheme;  // lower case
    std::string host;  // lower case
    std::string port;  // empty when not named (and not asked to fill in the scheme's)
};

// The host part of `url` as libcurl itself will read it, so that tricks such as user names
// ("http://musicbrainz.org@elsewhere/") cannot make one host pass for another.
std::optional<host_and_port> host_of(const std::string& url, bool with_default_port) {
    std::unique_ptr<CURLU, decltype(&curl_url_cleanup)> parsed(curl_url(), &curl_url_cleanup);
    if (!parsed || curl_url_set(parsed.get(), CURLUPART_URL, url.c_str(), 0) != CURLUE_OK) return std::nullopt;
    char* part = nullptr;
    if (curl_url_get(parsed.get(), CURLUPART_HOST, &part, 0) != CURLUE_OK) return std::nullopt;
    host_and_port out{{}, part, {}};
    curl_free(part);
    if (curl_url_get(parsed.get(), CURLUPART_SCHEME, &part, 0) == CURLUE_OK) {
        out.scheme = part;
        curl_free(part);
    }
    std::transform(out.host.begin(), out.host.end(), out.host.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (curl_url_get(parsed.get(), CURLUPART_PORT, &part, with_default_port ? CURLU_DEFAULT_PORT : 0) == CURLUE_OK) {
        out.port = part;
        curl_free(part);
    }
    return out;
}

// True when `target` is the service's host; a service named without a port matches any port.
bool is_service(const host_and_port& target, const std::string& service) {
    const std::optional<host_and_port> wanted = host_of("http://" + service + "/", false);
    return wanted && wanted->host == target.host && (wanted->port.empty() || wanted->port == target.port);
}

// The public service's own host, which answers plain http with a redirect to https.
constexpr std::string_view public_service_host = "musicbrainz.org";

// `url` over https on https's own port.
std::string as_https(const std::string& url) {
    std::unique_ptr<CURLU, decltype(&curl_url_cleanup)> parsed(curl_url(), &curl_url_cleanup);
    char* out = nullptr;
    if (!parsed || curl_url_set(parsed.get(), CURLUPART_URL, url.c_str(), 0) != CURLUE_OK ||
        curl_url_set(parsed.get(), CURLUPART_SCHEME, "https", 0) != CURLUE_OK ||
        curl_url_set(parsed.get(), CURLUPART_PORT, nullptr, 0) != CURLUE_OK ||
        curl_url_get(parsed.get(), CURLUPART_URL, &out, 0) != CURLUE_OK)
        return url;
    std::string secure = out;
    curl_free(out);
    return secure;
}

} // namespace

http_request_policy policy_for_url(const std::string& url) {
    http_request_policy policy;
    policy.url = url;
    policy.no_proxy = no_proxy_list();
    const std::optional<host_and_port> target = host_of(url, true);
    if (target && is_service(*target, musicbrainz_host())) {
        policy.user_agent += " ( " + std::string(contact) + " )";
        // The service's published limit: on average one request a second per client.
        policy.min_interval = std::chrono::seconds(1);
        // A client's budget, whichever of the service's doors it uses (http and https alike).
        policy.rate_key = target->host;
        policy.follow_redirects = false;
        policy.retries_on_503 = 3;
        if (target->host == public_service_host && target->port == "80" && target->scheme == "http")
            policy.url = as_https(url);
        policy.max_answer_lines = 0;
    }
    return policy;
}

http_request_policy policy_for_url(const std::string& url, std::chrono::milliseconds deadline) {
    http_request_policy policy = policy_for_url(url);
    policy.deadline = deadline;
    policy.stall = std::min(policy.stall, deadline);
    return policy;
}

std::string origin_of(const std::string& url) {
    const std::optional<host_and_port> target = host_of(url, true);
    if (!target) return url;
    return target->host + (target->port.empty() ? "" : ":" + target->port);
}

std::chrono::milliseconds delay_before_retry(const http_request_policy& policy, int retry, long retry_after_seconds) {
    if (retry_after_seconds > 0)
        return std::min<std::chrono::milliseconds>(std::chrono::seconds(retry_after_seconds), policy.max_retry_after);
    return policy.first_backoff * (1L << std::clamp(retry, 0, 16));
}
