#include "cli/input_checks.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>

#include "cli/command_line.h"

namespace tessellon_cli {

namespace {

bool is_name_char(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '.';
}

bool is_host_name(const std::string& host) {
    if (host.size() > 2 && host.front() == '[' && host.back() == ']')
        return std::all_of(host.begin() + 1, host.end() - 1,
                           [](char c) { return std::isxdigit(static_cast<unsigned char>(c)) || c == ':' || c == '.'; });
    return !host.empty() && host.size() <= 253 && host.front() != '-' && host.front() != '.' &&
           std::all_of(host.begin(), host.end(), is_name_char);
}

bool is_port(const std::string& port) {
    if (port.empty() || port.size() > 5 || !std::all_of(port.begin(), port.end(), [](char c) { return c >= '0' && c <= '9'; }))
        return false;
    const long n = std::strtol(port.c_str(), nullptr, 10);
    return n >= 1 && n <= 65535;
}

// HOST[:PORT] (IPv6 in brackets), split at the port's colon.
std::pair<std::string, std::string> split_authority(const std::string& authority) {
    const std::size_t colon = authority.rfind(':');
    if (colon == std::string::npos || authority.find(']', colon) != std::string::npos) return {authority, ""};
    return {authority.substr(0, colon), authority.substr(colon + 1)};
}

} // namespace

void check_host_name(const std::string& what, const std::string& host) {
    if (looks_like_url(host))
        throw usage_error{what + " '" + host + "' is a URL: give the host name alone (or the whole URL as the host, which is split)"};
    if (!is_host_name(host))
        throw usage_error{what + " '" + host + "' is not a host name (letters, digits, '-' and '.'; no port or path)"};
}

void check_port(const std::string& what, const std::string& port) {
    if (!is_port(port)) throw usage_error{what + " '" + port + "' is not a port (1 to 65535)"};
}

void check_address(const std::string& what, const std::string& address) {
    if (address.empty() || address.front() != '/' || address.find_first_of(" \t\r\n") != std::string::npos)
        throw usage_error{what + " '" + address + "' is not an address on the server (it begins with \"/\", no spaces)"};
}

void check_email(const std::string& address) {
    const std::size_t at = address.find('@');
    const bool ok = at != std::string::npos && at > 0 && address.find('@', at + 1) == std::string::npos &&
                    address.find_first_of(" \t\r\n&+") == std::string::npos && is_host_name(address.substr(at + 1));
    if (!ok)
        throw usage_error{"config email: '" + address +
                          "' is not an e-mail address of the form USER@HOST (it is sent to CDDB servers in the hello)"};
}

std::size_t parse_number(const std::string& what, const std::string& text) {
    const bool digits = !text.empty() && text.size() <= 9 && std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
    const unsigned long n = digits ? std::strtoul(text.c_str(), nullptr, 10) : 0;
    if (n == 0) throw usage_error{what + " '" + text + "' is not a number from 1 on"};
    return n;
}

bool looks_like_url(const std::string& text) { return text.find("://") != std::string::npos; }

server_url parse_server_url(const std::string& what, const std::string& url) {
    const std::string scheme = "http://";
    if (url.compare(0, scheme.size(), scheme) != 0) throw usage_error{what + ": expected http://HOST[:PORT][/ADDRESS], got " + url};
    const std::string rest = url.substr(scheme.size());
    const std::size_t slash = rest.find('/');
    auto [host, port] = split_authority(rest.substr(0, slash));
    server_url out{host, port, slash == std::string::npos ? "" : rest.substr(slash)};
    check_host_name(what + " host", out.host);
    if (!out.port.empty()) check_port(what + " port", out.port);
    if (!out.address.empty()) check_address(what + " address", out.address);
    return out;
}

void check_musicbrainz_host_override() {
    const char* name = "TESSELLON_MUSICBRAINZ_HOST";
    const char* value = std::getenv(name);
    if (!value || !*value) return;
    std::string host = value;
    for (const char* scheme : {"http://", "https://"})
        if (host.rfind(scheme, 0) == 0) host.erase(0, std::string(scheme).size());
    if (!host.empty() && host.back() == '/') host.pop_back();
    const auto [name_part, port] = split_authority(host);
    if (!is_host_name(name_part) || (!port.empty() && !is_port(port)))
        throw usage_error{std::string(name) + " '" + value + "' is not HOST[:PORT] (a scheme in front is allowed, no path)"};
    setenv(name, host.c_str(), 1);
}

} // namespace tessellon_cli
