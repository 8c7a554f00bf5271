#pragma once
// One CDDB server, and the ordered list of them the user configured.

#include <cstddef>
#include <string>
#include <vector>

class server_record {
public:
    // Length meaning "up to the terminating NUL".
    static constexpr std::size_t npos = static_cast<std::size_t>(-1);

    // Accessors in field order: server, protocol, port, address, description.
    const char* get_server() const { return server_.c_str(); }
    void set_server(const char* text, std::size_t length = npos) { assign(server_, text, length); }
    const char* get_protocol() const { return protocol_.c_str(); }
    void set_protocol(const char* text, std::size_t length = npos) { assign(protocol_, text, length); }
    const char* get_port() const { return port_.c_str(); }
    void set_port(const char* text, std::size_t length = npos) { assign(port_, text, length); }
    const char* get_address() const { return address_.c_str(); }
    void set_address(const char* text, std::size_t length = npos) { assign(address_, text, length); }
    const char* get_description() const { return description_.c_str(); }
    void set_description(const char* text, std::size_t length = npos) { assign(description_, text, length); }

    bool operator==(const server_record&) const = default;

private:
    static void assign(std::string& field, const char* text, std::size_t length);

    std::string server_, protocol_, port_, address_, description_;
};

using server_list = std::vector<server_record>;

// The built-in server (a placeholder host of this project's own, "http", "80",
// "/~cddb/cddb.cgi", "discora server").
void default_server_record(server_record& out);
// Empties `list` and appends the built-in server.
void reset_server_list(server_list& list);
