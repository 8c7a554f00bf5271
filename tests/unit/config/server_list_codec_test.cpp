// The server list's blob form and its load rules, without a store: what a damaged, older or
// newer blob turns into decides which servers a lookup asks.

#include <algorithm>
#include <cstdint>
#include <memory>
#include <ostream>
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

struct load_case {
    const char* name;
    std::string blob;
    server_list expected;
};

// Failure messages name the case instead of dumping its bytes.
void PrintTo(const load_case& c, std::ostream* os) { *os << c.name; }

class server_list_load : public testing::TestWithParam<load_case> {};

TEST_P(server_list_load, yields_the_expected_servers) {
    const load_case& c = GetParam();
    EXPECT_EQ(decode_server_list(c.blob.data(), c.blob.size()), c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    blob_rules, server_list_load,
    testing::Values(
        load_case{"count_zero_is_an_empty_list_not_the_default", u32(0), {}},
        load_case{"version_1_in_second_of_three_keeps_the_first", three_records_with_second_version(1), {first}},
        load_case{"unknown_version_in_first_record_gives_empty_list", u32(1) + record_blob(7, first), {}},
        load_case{"all_three_version_0_load_in_order", three_records_with_second_version(0), {first, second, third}},
        load_case{"cut_in_third_address_falls_back_to_default", cut_in_third_address(), builtin_list()},
        load_case{"truncated_count_falls_back_to_default", "\x02\x00"s, builtin_list()},
        load_case{"empty_blob_falls_back_to_default", ""s, builtin_list()},
        load_case{"count_larger_than_records_falls_back_to_default", u32(2) + record_blob(0, first), builtin_list()},
        load_case{"huge_count_with_one_record_falls_back_to_default", u32(0xFFFFFFFF) + record_blob(0, first),
                  builtin_list()},
        load_case{"string_length_past_the_end_falls_back_to_default",
                  u32(1) + u32(0) + u32(1000) + "short"s, builtin_list()},
        load_case{"bytes_after_the_last_record_are_ignored", u32(1) + record_blob(0, second) + "tail"s, {second}}),
    [](const testing::TestParamInfo<load_case>& info) { return std::string(info.param.name); });

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
}

TEST(server_list_blob, empty_list_is_just_a_zero_count) {
    EXPECT_EQ(encode_server_list({}), "\x00\x00\x00\x00"s);
}

struct round_trip_case {
    const char* name;
    server_list list;
};

// Failure messages name the case instead of dumping its bytes.
void PrintTo(const round_trip_case& c, std::ostream* os) { *os << c.name; }

class server_list_round_trip : public testing::TestWithParam<round_trip_case> {};

TEST_P(server_list_round_trip, decodes_to_the_same_records_byte_for_byte) {
    const server_list& list = GetParam().list;
    std::string blob = encode_server_list(list);
    server_list back = decode_server_list(blob.data(), blob.size());
    ASSERT_EQ(back.size(), list.size());
    for (std::size_t i = 0; i < list.size(); ++i) {
        EXPECT_EQ(std::string(back[i].get_server()), list[i].get_server()) << "record " << i;
        EXPECT_EQ(std::string(back[i].get_protocol()), list[i].get_protocol()) << "record " << i;
        EXPECT_EQ(std::string(back[i].get_port()), list[i].get_port()) << "record " << i;
        EXPECT_EQ(std::string(back[i].get_address()), list[i].get_address()) << "record " << i;
        EXPECT_EQ(std::string(back[i].get_description()), list[i].get_description()) << "record " << i;
    }
    EXPECT_EQ(encode_server_list(back), blob);
}

INSTANTIATE_TEST_SUITE_P(
    lists, server_list_round_trip,
    testing::Values(
        round_trip_case{"empty_list", {}},
        round_trip_case{"builtin_list", builtin_list()},
        round_trip_case{"all_fields_empty", {make_server_record("", "", "", "", "")}},
        round_trip_case{"non_ascii_texts",
                        {make_server_record("\xE3\x83\x86\xE3\x82\xB9\xE3\x83\x88.example", "http", "80",
                                     "/~c\xC3\xA9" "ddb/cddb.cgi", "Stra\xC3\x9F" "e \xF0\x9F\x8E\xB5")}},
        round_trip_case{"order_of_many_records_kept", {third, first, second, first, make_server_record("", "x", "", "", "")}},
        round_trip_case{"text_longer_than_16_bits",
                        {make_server_record("h", "http", "80", "/a", std::string(70000, 'd').c_str())}}),
    [](const testing::TestParamInfo<round_trip_case>& info) { return std::string(info.param.name); });

TEST(server_list_blob, lengths_beyond_32_bits_are_refused) {
    EXPECT_EQ(u32_checked(0xFFFFFFFFull), 0xFFFFFFFFu);
    EXPECT_THROW(u32_checked(0x100000000ull), vexa::exception_overflow);
}

TEST(server_list_reset, leaves_exactly_the_builtin_server) {
    server_list list{first, second};
    reset_server_list(list);
    ASSERT_EQ(list.size(), 1u);
    EXPECT_STREQ(list[0].get_protocol(), "http");
    EXPECT_STREQ(list[0].get_port(), "80");
    EXPECT_STREQ(list[0].get_address(), "/~cddb/cddb.cgi");
    EXPECT_STREQ(list[0].get_description(), "discora server");
    EXPECT_STRNE(list[0].get_server(), "");
}

struct assign_case {
    const char* name;
    std::string buffer;  // may hold NULs; its bytes are what the setter is given
    std::size_t length;
    std::string expected;
};

// Failure messages name the case instead of dumping its bytes.
void PrintTo(const assign_case& c, std::ostream* os) { *os << c.name; }

class server_record_setter : public testing::TestWithParam<assign_case> {};

TEST_P(server_record_setter, takes_the_text_up_to_length_or_nul) {
    const assign_case& c = GetParam();
    // A heap copy of exactly the given bytes: reading past them is caught by the sanitizers.
    auto bytes = std::make_unique<char[]>(c.buffer.size());
    std::copy(c.buffer.begin(), c.buffer.end(), bytes.get());
    server_record r;
    r.set_address(bytes.get(), c.length);
    EXPECT_EQ(std::string(r.get_address()), c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    lengths, server_record_setter,
    testing::Values(assign_case{"npos_reads_to_the_nul", "/cddb.cgi\0rest"s, server_record::npos, "/cddb.cgi"},
                    assign_case{"length_cuts_the_text", "/cddb.cgi"s, 5, "/cddb"},
                    assign_case{"unterminated_buffer_of_exact_length", "abc"s, 3, "abc"},
                    assign_case{"nul_inside_length_ends_the_text", "ab\0cd"s, 5, "ab"},
                    assign_case{"zero_length_is_empty", "abc"s, 0, ""}),
    [](const testing::TestParamInfo<assign_case>& info) { return std::string(info.param.name); });

TEST(server_record_setter, replaces_only_its_own_field) {
    server_record r = first;
    r.set_port("8880");
    EXPECT_STREQ(r.get_port(), "8880");
    EXPECT_STREQ(r.get_server(), first.get_server());
    EXPECT_STREQ(r.get_protocol(), first.get_protocol());
    EXPECT_STREQ(r.get_address(), first.get_address());
    EXPECT_STREQ(r.get_description(), first.get_description());
}

} // namespace
