// The server list's blob form and its load rules, without a store: what a damaged, older or
// newer blob turns into decides which servers a lookup asks.

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include <tunehall/exceptions.h>

#include "config/le_bytes.h"
#include "config/settings.h"
#include "unit/config/server_record_maker.h"

using namespace std::string_literals;

namespace {

server_list builtin_list() {
    server_list list;
    reset_server_list(list);
    return list;
}

// Blob pieces written out by hand, so the expectations do not lean on the encoder.
std::string u32(std::uint32_t v) {
    return {static_cast<char>(v & 0xFF), static_cast<char>((v >> 8) & 0xFF), static_cast<char>((v >> 16) & 0xFF),
            static_cast<char>((v >> 24) & 0xFF)};
}
std::string text(std::string_view s) { return u32(static_cast<std::uint32_t>(s.size())) + std::string(s); }
std::string record_blob(std::uint32_t version, const server_record& r) {
    return u32(version) + text(r.get_server()) + text(r.get_protocol()) + text(r.get_port()) + text(r.get_address()) +
           text(r.get_description());
}

const server_record first = make_server_record("cddb.example.org", "http", "80", "/~cddb/cddb.cgi", "first");
const server_record second = make_server_record("mirror.example.net", "http", "8880", "/cgi-bin/cddb.cgi", "second");
const server_record third = make_server_record("old.example.com", "http", "8080", "/cddb/query.cgi", "third");

std::string three_records_with_second_version(std::uint32_t second_version) {
    return u32(3) + record_blob(0, first) + record_blob(second_version, second) + record_blob(0, third);
}

// The third record written up to two bytes into its address.
std::string cut_in_third_address() {
    std::string whole_address = third.get_address();
    return u32(3) + record_blob(0, first) + record_blob(0, second) + u32(0) + text(third.get_server()) +
           text(third.get_protocol()) + text(third.get_port()) + u32(static_cast<std::uint32_t>(whole_address.size())) +
           whole_address.substr(0, 2);
}

TEST(server_list_blob, loads_by_its_rules_falling_back_to_the_builtin_list_when_damaged) {
    const struct {
        std::string blob;
        server_list expected;
    } cases[] = {
        {u32(0), {}},  // an empty list, not the default
        {three_records_with_second_version(1), {first}},
        {u32(1) + record_blob(7, first), {}},  // an unknown version in the first record
        {three_records_with_second_version(0), {first, second, third}},
        {cut_in_third_address(), builtin_list()},
        {"\x02\x00"s, builtin_list()},
        {""s, builtin_list()},
        {u32(2) + record_blob(0, first), builtin_list()},
        {u32(0xFFFFFFFF) + record_blob(0, first), builtin_list()},
        {u32(1) + u32(0) + u32(1000) + "short"s, builtin_list()},
        {u32(1) + record_blob(0, second) + "tail"s, {second}},  // bytes after the last record are ignored
    };
    for (std::size_t i = 0; i < std::size(cases); ++i)
        EXPECT_EQ(decode_server_list(cases[i].blob.data(), cases[i].blob.size()), cases[i].expected) << "case " << i;
}

TEST(server_list_blob, small_list_has_exact_bytes) {
    server_list list{make_server_record("h", "http", "80", "/x", ""), make_server_record("", "", "", "", "Z\xC3\xBCrich")};
    const std::string expected =
        "\x02\x00\x00\x00"s                                  // two records
        "\x00\x00\x00\x00"s                                  // version 0
        "\x01\x00\x00\x00h"s                                 // server
        "\x04\x00\x00\x00http"s                              // protocol
        "\x02\x00\x00\x00" "80"s                             // port
        "\x02\x00\x00\x00/x"s                                // address
        "\x00\x00\x00\x00"s                                  // empty description
        "\x00\x00\x00\x00"s                                  // version 0
        "\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00"s  // three empty texts
        "\x00\x00\x00\x00"s                                  // empty address
        "\x07\x00\x00\x00Z\xC3\xBCrich"s;                    // UTF-8 description, no terminator
    EXPECT_EQ(encode_server_list(list), expected);
    EXPECT_EQ(encode_server_list({}), "\x00\x00\x00\x00"s);
}

TEST(server_list_blob, decodes_what_it_encodes_byte_for_byte) {
    const server_list lists[] = {
        {},
        builtin_list(),
        {make_server_record("", "", "", "", "")},
        {make_server_record("\xE3\x83\x86\xE3\x82\xB9\xE3\x83\x88.example", "http", "80", "/~c\xC3\xA9" "ddb/cddb.cgi",
                            "Stra\xC3\x9F" "e \xF0\x9F\x8E\xB5")},
        {third, first, second, first, make_server_record("", "x", "", "", "")},
        {make_server_record("h", "http", "80", "/a", std::string(70000, 'd').c_str())},
    };
    for (const server_list& list : lists) {
        std::string blob = encode_server_list(list);
        server_list back = decode_server_list(blob.data(), blob.size());
        EXPECT_EQ(back, list);
        EXPECT_EQ(encode_server_list(back), blob);
    }
    EXPECT_EQ(u32_checked(0xFFFFFFFFull), 0xFFFFFFFFu);
    EXPECT_THROW(u32_checked(0x100000000ull), vexa::exception_overflow);
}

TEST(server_record_setter, takes_the_text_up_to_length_or_nul) {
    const struct {
        std::string buffer;  // may hold NULs; its bytes are what the setter is given
        std::size_t length;
        std::string expected;
    } cases[] = {{"/cddb.cgi\0rest"s, server_record::npos, "/cddb.cgi"},
                 {"/cddb.cgi"s, 5, "/cddb"},
                 {"abc"s, 3, "abc"},
                 {"ab\0cd"s, 5, "ab"},
                 {"abc"s, 0, ""}};
    for (const auto& c : cases) {
        // A heap copy of exactly the given bytes: reading past them is caught by the sanitizers.
        auto bytes = std::make_unique<char[]>(c.buffer.size());
        std::copy(c.buffer.begin(), c.buffer.end(), bytes.get());
        server_record r;
        r.set_address(bytes.get(), c.length);
        EXPECT_EQ(std::string(r.get_address()), c.expected) << c.length;
    }
}

} // namespace
