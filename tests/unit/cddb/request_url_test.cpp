// The request address: how the command and the hello are escaped, and when the port shows.

#include <string>

#include <gtest/gtest.h>

#include "cddb/request_url.h"
#include "config/server_record.h"

namespace {

server_record server_with_port(const char* port) {
    server_record r;
    r.set_server("cddb.example");
    r.set_protocol("cddbp");  // the record's protocol does not change the scheme
    r.set_port(port);
    r.set_address("/~cddb/cddb.cgi");
    return r;
}

TEST(request_url, shows_the_port_unless_exactly_80_and_escapes_each_hello_part) {
    const struct {
        const char* port;
        const char* authority;
    } cases[] = {{"80", "cddb.example"},         {"8880", "cddb.example:8880"}, {"080", "cddb.example:080"},
                 {"80 ", "cddb.example:80 "},    {"", "cddb.example:"}};
    for (const auto& c : cases) {
        std::string url = cddb_request_url(server_with_port(c.port), "cddb lscat", "J\xC3\xBCrgen M", "mail\thost");
        EXPECT_EQ(url.substr(0, url.find("&hello=")),
                  std::string("http://") + c.authority + "/~cddb/cddb.cgi?cmd=cddb+lscat");
        // The client's name and version follow the user's two parts; the protocol level ends it.
        EXPECT_EQ(url.rfind("&hello=J%ffffffc3%ffffffbcrgen_M+mail%09host+", url.find("&hello=")),
                  url.find("&hello="));
        EXPECT_EQ(url.substr(url.size() - 8), "&proto=6");
    }
}

TEST(request_url, escapes_commands_and_hello_parts) {
    const struct {
        std::string raw, command_form, hello_form;
    } cases[] = {
        {"a b", "a+b", "a_b"},
        {"a\tb", "a%09b", "a%09b"},
        {"\n\r", "%0a%0d", "%0a%0d"},
        {std::string("\0\x01\x1f", 3), "%00%01%1f", "%00%01%1f"},
        {"\x7f", "\x7f", "\x7f"},
        // High bytes are taken as signed and printed sign-extended.
        {"\xC3\xA9", "%ffffffc3%ffffffa9", "%ffffffc3%ffffffa9"},
        {"\x80\xFF", "%ffffff80%ffffffff", "%ffffff80%ffffffff"},
        {"a&b=c%d+e?f/g#h~AZaz09!@", "a&b=c%d+e?f/g#h~AZaz09!@", "a&b=c%d+e?f/g#h~AZaz09!@"},
    };
    for (const auto& c : cases) {
        std::string command, hello;
        append_command_escaped(command, c.raw);
        append_hello_escaped(hello, c.raw);
        EXPECT_EQ(command, c.command_form) << testing::PrintToString(c.raw);
        EXPECT_EQ(hello, c.hello_form) << testing::PrintToString(c.raw);
    }
}

} // namespace
