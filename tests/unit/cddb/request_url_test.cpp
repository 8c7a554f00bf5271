// The request address: how the command and the hello are escaped, and when the port shows.

#include <string>

#include <gtest/gtest.h>

#include "cddb/request_url.h"
#include "config/server_record.h"

namespace {

server_record server_with_port(const char* port) {
    server_record r;
    r.set_server("cddb.example");
    r.set_protocol("http");
    r.set_port(port);
    r.set_address("/~cddb/cddb.cgi");
    r.set_description("test");
    return r;
}

TEST(request_url, the_worked_query_on_the_default_server) {
    server_record r;
    default_server_record(r);
    EXPECT_EQ(cddb_request_url(r, "cddb query 1502D003 3 150 13650 31665 722", "ann", "mailhost"),
              std::string("http://") + r.get_server() +
                  "/~cddb/cddb.cgi?cmd=cddb+query+1502D003+3+150+13650+31665+722"
                  "&hello=ann+mailhost+sonatag2+0.9&proto=6");
}

struct port_case {
    const char* port;
    const char* authority;
};

class request_url_port : public testing::TestWithParam<port_case> {};

TEST_P(request_url_port, shows_unless_exactly_80) {
    EXPECT_EQ(cddb_request_url(server_with_port(GetParam().port), "sites", "u", "h"),
              std::string("http://") + GetParam().authority +
                  "/~cddb/cddb.cgi?cmd=sites&hello=u+h+sonatag2+0.9&proto=6");
}

INSTANTIATE_TEST_SUITE_P(ports, request_url_port,
                         testing::Values(port_case{"80", "cddb.example"}, port_case{"8880", "cddb.example:8880"},
                                         port_case{"080", "cddb.example:080"}, port_case{"80 ", "cddb.example:80 "},
                                         port_case{"", "cddb.example:"}, port_case{"8080", "cddb.example:8080"}));

TEST(request_url, the_record_protocol_does_not_change_the_scheme) {
    server_record r = server_with_port("80");
    r.set_protocol("cddbp");
    EXPECT_EQ(cddb_request_url(r, "sites", "u", "h").rfind("http://cddb.example/", 0), 0u);
}

struct escape_case {
    const char* name;
    std::string raw;
    std::string command_form;
    std::string hello_form;
};

class request_url_escaping : public testing::TestWithParam<escape_case> {};

TEST_P(request_url_escaping, of_commands_and_hello_parts) {
    std::string command, hello;
    append_command_escaped(command, GetParam().raw);
    append_hello_escaped(hello, GetParam().raw);
    EXPECT_EQ(command, GetParam().command_form);
    EXPECT_EQ(hello, GetParam().hello_form);
}

INSTANTIATE_TEST_SUITE_P(
    bytes, request_url_escaping,
    testing::Values(
        escape_case{"space", "a b", "a+b", "a_b"},
        escape_case{"tab", "a\tb", "a%09b", "a%09b"},
        escape_case{"line_feed_and_cr", "\n\r", "%0a%0d", "%0a%0d"},
        escape_case{"low_controls", std::string("\0\x01\x1f", 3), "%00%01%1f", "%00%01%1f"},
        escape_case{"delete_is_kept", "\x7f", "\x7f", "\x7f"},
        // High bytes are taken as signed and printed sign-extended.
        escape_case{"e_acute_latin1", "\xE9", "%ffffffe9", "%ffffffe9"},
        escape_case{"e_acute_utf8", "\xC3\xA9", "%ffffffc3%ffffffa9", "%ffffffc3%ffffffa9"},
        escape_case{"byte_80_and_ff", "\x80\xFF", "%ffffff80%ffffffff", "%ffffff80%ffffffff"},
        escape_case{"query_syntax_is_copied", "a&b=c%d+e?f/g#h", "a&b=c%d+e?f/g#h", "a&b=c%d+e?f/g#h"},
        escape_case{"printable", "~AZaz09!@", "~AZaz09!@", "~AZaz09!@"}),
    [](const testing::TestParamInfo<escape_case>& info) { return info.param.name; });

TEST(request_url, hello_parts_are_escaped_each) {
    EXPECT_EQ(cddb_request_url(server_with_port("80"), "cddb lscat", "J\xC3\xBCrgen M", "mail\thost"),
              "http://cddb.example/~cddb/cddb.cgi?cmd=cddb+lscat"
              "&hello=J%ffffffc3%ffffffbcrgen_M+mail%09host+sonatag2+0.9&proto=6");
}

} // namespace
