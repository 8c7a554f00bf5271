// Cutting an answer into lines: terminators, empty lines, the line length limit, UTF-8, abort.

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <tunehall/exceptions.h>

#include "cddb/line_reader.h"
#include "cddb_test_support.h"

namespace {

using cddb_testing::memory_reader;

// Takes every line as a body line (no status line needed) and notes the end.
class collecting_handler final : public response_handler {
public:
    std::vector<std::string> lines;
    bool finished = false;

    collecting_handler() { on_line("210 take everything"); }

private:
    bool on_status(unsigned, std::string_view) override { return true; }
    void on_body_line(std::string_view line) override { lines.emplace_back(line); }
    void on_end() override { finished = true; }
};

std::vector<std::string> lines_of_answer(const std::string& bytes) {
    collecting_handler h;
    memory_reader in(bytes);
    abort_source_dummy never;
    read_answer_lines(in, h, never);
    EXPECT_TRUE(h.finished);
    return h.lines;
}

std::string failure_text(const std::string& bytes) {
    collecting_handler h;
    memory_reader in(bytes);
    abort_source_dummy never;
    try {
        read_answer_lines(in, h, never);
    } catch (const tunehall_io::exception_io_data& e) {
        EXPECT_FALSE(h.finished);
        return e.what();
    }
    return "no failure";
}

using lines = std::vector<std::string>;

TEST(answer_lines, every_terminator_ends_a_line_and_empty_lines_vanish) {
    EXPECT_EQ(lines_of_answer("a\nb\n"), (lines{"a", "b"}));
    EXPECT_EQ(lines_of_answer("a\r\nb\r\n"), (lines{"a", "b"}));
    EXPECT_EQ(lines_of_answer("a\rb\r"), (lines{"a", "b"}));
    EXPECT_EQ(lines_of_answer("\r\n\r\na\n\n\n\r\rb\r\n\r\n"), (lines{"a", "b"}));
    EXPECT_EQ(lines_of_answer("\n\n\nfirst\r\n\r\n"), (lines{"first"}));
    // Nothing but terminators: no line arrives, so the body the handler expects is missing.
    EXPECT_EQ(failure_text("\r\n\n\r"), "Unsupported format or corrupted file");
}

TEST(answer_lines, the_last_line_needs_no_terminator) {
    EXPECT_EQ(lines_of_answer("a\nlast"), (lines{"a", "last"}));
}

TEST(answer_lines, spaces_and_tabs_stay_in_the_line) {
    EXPECT_EQ(lines_of_answer("  a\tb  \n"), (lines{"  a\tb  "}));
}

// Found by fuzzing: "200 rock \0 Artist / Album" passed the match line's checks and then
// delivered a match whose disc id, cut at the NUL, was empty.
TEST(answer_lines, a_line_carrying_a_nul_byte_fails) {
    EXPECT_EQ(failure_text(std::string("200 rock \0 Artist / Album\n", 27)), "Unsupported format or corrupted file");
    EXPECT_EQ(failure_text(std::string("210 ok\na\0b\n", 12)), "Unsupported format or corrupted file");
}

TEST(answer_lines, a_line_of_16384_bytes_passes_and_one_more_fails) {
    std::string longest(max_answer_line, 'x');
    ASSERT_EQ(longest.size(), 16384u);
    EXPECT_EQ(lines_of_answer(longest + "\r\nnext\n"), (lines{longest, "next"}));
    EXPECT_EQ(lines_of_answer(longest), (lines{longest}));
    EXPECT_EQ(failure_text(longest + "x\n"), "Unsupported format or corrupted file");
    EXPECT_EQ(failure_text(longest + "x"), "Unsupported format or corrupted file");
    EXPECT_EQ(failure_text("short\n" + longest + "xyz\nshort\n"), "Unsupported format or corrupted file");
    // The limit is per line: many long lines are fine.
    EXPECT_EQ(lines_of_answer(longest + "\n" + longest + "\n").size(), 2u);
}

TEST(answer_lines, a_line_that_is_not_utf8_fails) {
    EXPECT_EQ(failure_text("Die \xC4rzte\n"), "Unsupported format or corrupted file");
    EXPECT_EQ(failure_text("ok\nbad \xE9 at the end"), "Unsupported format or corrupted file");
    EXPECT_EQ(lines_of_answer("Die \xC3\x84rzte\n"), (lines{"Die \xC3\x84rzte"}));
}

TEST(answer_lines, lines_before_a_bad_one_are_delivered) {
    collecting_handler h;
    memory_reader in("one\ntwo\n\xFF\nfour\n");
    abort_source_dummy never;
    EXPECT_THROW(read_answer_lines(in, h, never), tunehall_io::exception_io_data);
    EXPECT_EQ(h.lines, (lines{"one", "two"}));
}

// A reader that trips the abort source once it has handed out a number of bytes.
class aborting_reader final : public stream_reader {
public:
    aborting_reader(std::string bytes, std::size_t abort_after, abort_source_impl& abort)
        : bytes_(std::move(bytes)), abort_after_(abort_after), abort_(abort) {}
    std::size_t read(void* buffer, std::size_t size, abort_source&) override {
        if (at_ == abort_after_) abort_.abort();
        if (at_ >= bytes_.size() || size == 0) return 0;
        static_cast<char*>(buffer)[0] = bytes_[at_++];
        return 1;
    }

private:
    std::string bytes_;
    std::size_t at_ = 0;
    std::size_t abort_after_;
    abort_source_impl& abort_;
};

TEST(answer_lines, an_abort_stops_before_the_next_byte) {
    abort_source_impl abort;
    collecting_handler h;
    // The abort comes while "second" is being read: nothing more is delivered, not even the
    // part already read, and the end is never signalled.
    aborting_reader in("first\nsecond\nthird\n", 8, abort);
    EXPECT_THROW(read_answer_lines(in, h, abort), tunehall_io::exception_aborted);
    EXPECT_EQ(h.lines, (lines{"first"}));
    EXPECT_FALSE(h.finished);
}

TEST(answer_lines, an_abort_before_the_start_reads_nothing) {
    abort_source_impl abort;
    abort.abort();
    collecting_handler h;
    memory_reader in("first\n");
    EXPECT_THROW(read_answer_lines(in, h, abort), tunehall_io::exception_aborted);
    EXPECT_TRUE(h.lines.empty());
}

struct utf8_case {
    const char* name;
    std::string bytes;
    bool valid;
};

class utf8_check : public testing::TestWithParam<utf8_case> {};

TEST_P(utf8_check, accepts_only_well_formed_text) { EXPECT_EQ(is_valid_utf8(GetParam().bytes), GetParam().valid); }

INSTANTIATE_TEST_SUITE_P(
    sequences, utf8_check,
    testing::Values(utf8_case{"ascii", "plain text", true}, utf8_case{"empty", "", true},
                    utf8_case{"nul", std::string("\0", 1), true}, utf8_case{"two_bytes", "\xC3\xA9", true},
                    utf8_case{"three_bytes", "\xE2\x82\xAC", true}, utf8_case{"four_bytes", "\xF0\x9D\x84\x9E", true},
                    utf8_case{"largest", "\xF4\x8F\xBF\xBF", true},
                    utf8_case{"before_surrogates", "\xED\x9F\xBF", true},
                    utf8_case{"latin1", "\xE9t\xE9", false}, utf8_case{"lone_continuation", "\x80", false},
                    utf8_case{"overlong_nul", "\xC0\x80", false}, utf8_case{"overlong_slash", "\xE0\x80\xAF", false},
                    utf8_case{"overlong_four", "\xF0\x8F\xBF\xBF", false},
                    utf8_case{"surrogate", "\xED\xA0\x80", false},
                    utf8_case{"above_range", "\xF4\x90\x80\x80", false},
                    utf8_case{"five_byte_lead", "\xF8\x88\x80\x80\x80", false},
                    utf8_case{"ff", "\xFF", false}, utf8_case{"cut_short", "ab\xE2\x82", false},
                    utf8_case{"bad_continuation", "\xE2\x28\xA1", false}),
    [](const testing::TestParamInfo<utf8_case>& info) { return info.param.name; });

} // namespace
