#include "cddb/sites_handler.h"

#include <string>

#include <tunehall/exceptions.h>

namespace {

[[noreturn]] void malformed() { throw tunehall_io::exception_io_data(); }

bool is_digit(char c) { return c >= '0' && c <= '9'; }

bool is_separator(char c) { return c == ' ' || c == '\r' || c == '\n'; }

// Space-separated tokens; runs of spaces count as one separator.
class token_reader {
public:
    explicit token_reader(std::string_view line) : rest_(line.substr(0, line.find('\0'))) {}

    std::string_view next() {
        skip_spaces();
        std::size_t end = 0;
        while (end < rest_.size() && !is_separator(rest_[end])) ++end;
        std::string_view token = rest_.substr(0, end);
        rest_.remove_prefix(end);
        if (token.empty()) malformed();
        return token;
    }

    std::string_view remainder() {
        skip_spaces();
        if (rest_.empty()) malformed();
        return rest_;
    }

private:
    void skip_spaces() {
        while (!rest_.empty() && rest_.front() == ' ') rest_.remove_prefix(1);
    }

    std::string_view rest_;
};

// A hemisphere letter, three digits of degrees, ".", two digits of minutes.
void check_coordinate(std::string_view token, std::string_view hemispheres) {
    if (token.size() != 7 || hemispheres.find(token[0]) == std::string_view::npos || !is_digit(token[1]) ||
        !is_digit(token[2]) || !is_digit(token[3]) || token[4] != '.' || !is_digit(token[5]) || !is_digit(token[6]))
        malformed();
}

} // namespace

server_record parse_site_line(std::string_view line) {
    token_reader tokens(line);
    std::string_view server = tokens.next();
    std::string_view protocol = tokens.next();
    std::string_view port = tokens.next();
    std::string_view address = tokens.next();
    check_coordinate(tokens.next(), "NSns");
    check_coordinate(tokens.next(), "EWew");
    std::string_view description = tokens.remainder();

    server_record site;
    site.set_server(server.data(), server.size());
    site.set_protocol(protocol.data(), protocol.size());
    site.set_port(port.data(), port.size());
    site.set_address(address.data(), address.size());
    site.set_description(description.data(), description.size());
    return site;
}

bool sites_handler::on_status(unsigned code, std::string_view) {
    switch (code) {
    case 210:
        return true;
    case 401:
        return false;
    default:
        throw tunehall_io::exception_io_data("Invalid status code. Expected 210 or 401, got " + std::to_string(code));
    }
}

void sites_handler::on_body_line(std::string_view line) { receiver_(parse_site_line(line)); }
