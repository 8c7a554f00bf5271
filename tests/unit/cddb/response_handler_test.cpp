// The dispatcher every CDDB answer goes through: status line, body, terminator, and the check at
// the end of the answer.

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <tunehall/exceptions.h>

#include "cddb/response_handler.h"

namespace {

// Records what the dispatcher hands on; announces a body when told to.
class recording_handler final : public response_handler {
public:
    explicit recording_handler(bool body) : body_(body) {}

    std::vector<std::string> calls;

private:
    bool on_status(unsigned code, std::string_view rest) override {
        calls.push_back("status " + std::to_string(code) + " [" + std::string(rest) + "]");
        return body_;
    }
    void on_body_line(std::string_view line) override { calls.push_back("body [" + std::string(line) + "]"); }
    void on_end() override { calls.push_back("end"); }

    bool body_;
};

std::string malformed_text(const std::function<void()>& action) {
    try {
        action();
    } catch (const tunehall_io::exception_io_data& e) {
        return e.what();
    }
    return "no failure";
}

TEST(response_handler, a_status_with_a_body_reads_lines_up_to_the_dot) {
    recording_handler h(true);
    EXPECT_EQ(h.state(), response_handler::awaiting_status);
    h.on_line("210 Found exact matches, list follows");
    EXPECT_EQ(h.state(), response_handler::reading_body);
    EXPECT_TRUE(h.body_pending());
    h.on_line("rock 1502D003 Artist / Album");
    EXPECT_FALSE(h.body_pending());
    h.on_line(" .");
    h.on_line("..");
    h.on_line(".");
    EXPECT_EQ(h.state(), response_handler::done);
    h.on_line("after the end");
    h.on_line("not even a status");
    h.on_finish();
    EXPECT_EQ(h.calls, (std::vector<std::string>{"status 210 [Found exact matches, list follows]",
                                                 "body [rock 1502D003 Artist / Album]", "body [ .]", "body [..]",
                                                 "end"}));
}

TEST(response_handler, a_status_without_a_body_is_done_at_once) {
    recording_handler h(false);
    h.on_line("202 No match for disc ID 1502D003.");
    EXPECT_EQ(h.state(), response_handler::done);
    EXPECT_FALSE(h.body_pending());
    h.on_line("rock 1502D003 ignored");
    h.on_finish();
    EXPECT_EQ(h.calls, (std::vector<std::string>{"status 202 [No match for disc ID 1502D003.]", "end"}));
}

TEST(response_handler, the_code_is_three_digits_and_the_rest_follows_one_space) {
    recording_handler h(false);
    h.on_line("000 ");
    recording_handler h2(false);
    h2.on_line("999  two spaces");
    EXPECT_EQ(h.calls.front(), "status 0 []");
    EXPECT_EQ(h2.calls.front(), "status 999 [ two spaces]");
}

struct malformed_case {
    std::string line;
    std::string shown;
};

class malformed_status : public testing::TestWithParam<malformed_case> {};

TEST_P(malformed_status, fails_naming_the_first_three_characters) {
    recording_handler h(true);
    EXPECT_EQ(malformed_text([&] { h.on_line(GetParam().line); }), "Malformed status code: " + GetParam().shown);
    EXPECT_TRUE(h.calls.empty());
}

INSTANTIATE_TEST_SUITE_P(lines, malformed_status,
                         testing::Values(malformed_case{"20 OK", "20 "}, malformed_case{"abc def", "abc"},
                                         malformed_case{"2100 x", "210"}, malformed_case{"210", "210"},
                                         malformed_case{"21", "21"}, malformed_case{".", "."},
                                         malformed_case{"210\tFound", "210"}, malformed_case{"2a0 x", "2a0"},
                                         malformed_case{" 210 x", " 21"}, malformed_case{"<html>", "<ht"}));

TEST(response_handler, a_body_announced_but_never_begun_is_malformed) {
    recording_handler h(true);
    h.on_line("210 list follows");
    EXPECT_EQ(malformed_text([&] { h.on_finish(); }), "Unsupported format or corrupted file");
    EXPECT_EQ(h.calls.size(), 1u);  // no end
}

TEST(response_handler, a_body_cut_off_after_a_line_counts_as_complete) {
    recording_handler h(true);
    h.on_line("210 list follows");
    h.on_line("one");
    h.on_finish();
    EXPECT_EQ(h.calls.back(), "end");
}

TEST(response_handler, an_empty_body_closed_by_the_dot_is_complete) {
    recording_handler h(true);
    h.on_line("210 list follows");
    h.on_line(".");
    h.on_finish();
    EXPECT_EQ(h.calls, (std::vector<std::string>{"status 210 [list follows]", "end"}));
}

TEST(response_handler, an_answer_without_any_line_is_malformed) {
    recording_handler h(true);
    EXPECT_EQ(malformed_text([&] { h.on_finish(); }), "Unsupported format or corrupted file");
    EXPECT_TRUE(h.calls.empty());  // nothing ends, so no empty entry reaches a receiver
}

} // namespace
