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

TEST(response_handler, a_status_with_a_body_reads_lines_up_to_the_dot_and_one_without_is_done_at_once) {
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
    // Without a body it is done at once.
    recording_handler no_body(false);
    no_body.on_line("202 No match for disc ID 1502D003.");
    EXPECT_EQ(no_body.state(), response_handler::done);
    EXPECT_FALSE(no_body.body_pending());
    no_body.on_line("rock 1502D003 ignored");
    no_body.on_finish();
    EXPECT_EQ(no_body.calls, (std::vector<std::string>{"status 202 [No match for disc ID 1502D003.]", "end"}));
}

TEST(response_handler, the_code_is_three_digits_and_the_rest_follows_one_space) {
    const struct {
        std::string line;
        std::string call;  // the status handed on, or the failure
    } cases[] = {
        {"000 ", "status 0 []"},
        {"999  two spaces", "status 999 [ two spaces]"},
        {"20 OK", "Malformed status code: 20 "},
        {"abc def", "Malformed status code: abc"},
        {"2100 x", "Malformed status code: 210"},
        {"210", "Malformed status code: 210"},
        {"21", "Malformed status code: 21"},
        {"210\tFound", "Malformed status code: 210"},
        {"2a0 x", "Malformed status code: 2a0"},
        {" 210 x", "Malformed status code:  21"},
    };
    for (const auto& c : cases) {
        recording_handler h(true);
        std::string failure = malformed_text([&] { h.on_line(c.line); });
        EXPECT_EQ(h.calls.empty() ? failure : h.calls.front(), c.call) << c.line;
    }
}

TEST(response_handler, a_body_ends_with_the_dot_or_the_answer_but_must_have_begun) {
    // The lines after the status, and whether the end of the answer is accepted.
    const struct {
        std::vector<std::string> body;
        bool complete;
    } cases[] = {{{"one"}, true}, {{"."}, true}, {{}, false}};
    for (const auto& c : cases) {
        recording_handler h(true);
        h.on_line("210 list follows");
        for (const std::string& line : c.body) h.on_line(line);
        EXPECT_EQ(malformed_text([&] { h.on_finish(); }),
                  c.complete ? "no failure" : "Unsupported format or corrupted file");
        EXPECT_EQ(h.calls.back() == "end", c.complete);
    }
    // An answer without any line: nothing ends, so no empty entry reaches a receiver.
    recording_handler h(true);
    EXPECT_EQ(malformed_text([&] { h.on_finish(); }), "Unsupported format or corrupted file");
    EXPECT_TRUE(h.calls.empty());
}

} // namespace
