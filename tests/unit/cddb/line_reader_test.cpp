// Cutting an answer into lines: terminators, empty lines, the line length limit, UTF-8, abort.

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <tunehall/exceptions.h>

#include "cddb/line_reader.h"
#include "cddb_test_support.h"

namespace {

using cddb_testing::memory_reader;
using lines = std::vector<std::string>;

// Takes every line as a body line (no status line needed) and notes the end.
class collecting_handler final : public response_handler {
public:
    lines got;
    bool finished = false;

    collecting_handler() { on_line("210 take everything"); }

private:
    bool on_status(unsigned, std::string_view) override { return true; }
    void on_body_line(std::string_view line) override { got.emplace_back(line); }
    void on_end() override { finished = true; }
};

// The lines delivered, then "FAILED" when the answer was refused (and the end never signalled).
lines read_lines(stream_reader& in, abort_source& abort) {
    collecting_handler h;
    try {
        read_answer_lines(in, h, abort);
        EXPECT_TRUE(h.finished);
    } catch (const tunehall_io::exception_io_data& e) {
        EXPECT_STREQ(e.what(), "Unsupported format or corrupted file");
        EXPECT_FALSE(h.finished);
        h.got.push_back("FAILED");
    }
    return h.got;
}

lines read_lines(const std::string& bytes) {
    memory_reader in(bytes);
    abort_source_dummy never;
    return read_lines(in, never);
}

TEST(answer_lines, are_cut_at_every_terminator_and_refused_when_too_long_or_not_utf8) {
    const std::string longest(max_answer_line, 'x');
    const struct {
        std::string bytes;
        lines expected;
    } cases[] = {
        {"a\nb\n", {"a", "b"}},
        {"a\r\nb\r\n", {"a", "b"}},
        {"a\rb\r", {"a", "b"}},
        {"\r\n\r\na\n\n\n\r\rb\r\n\r\n", {"a", "b"}},
        {"a\nlast", {"a", "last"}},
        {"  a\tb  \n", {"  a\tb  "}},
        {"Die \xC3\x84rzte\n", {"Die \xC3\x84rzte"}},
        // Nothing but terminators: the body the handler expects never comes.
        {"\r\n\n\r", {"FAILED"}},
        // Found by fuzzing: a NUL let a match line through with its disc id cut short.
        {std::string("200 rock \0 Artist / Album\n", 27), {"FAILED"}},
        {"one\ntwo\n\xFF\nfour\n", {"one", "two", "FAILED"}},
        {"ok\nbad \xE9 at the end", {"ok", "FAILED"}},
        {longest + "\r\nnext\n", {longest, "next"}},
        {longest, {longest}},
        {longest + "\n" + longest + "\n", {longest, longest}},
        {longest + "x", {"FAILED"}},
        {"short\n" + longest + "xyz\nshort\n", {"short", "FAILED"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.bytes.substr(0, 40));
        EXPECT_EQ(read_lines(c.bytes), c.expected);
    }
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
    // At 8 bytes "second" is half read: neither it nor the end is delivered; at 0 nothing is.
    for (std::size_t after : {8u, 0u}) {
        abort_source_impl abort;
        collecting_handler h;
        aborting_reader in("first\nsecond\nthird\n", after, abort);
        EXPECT_THROW(read_answer_lines(in, h, abort), tunehall_io::exception_aborted);
        EXPECT_EQ(h.got, after ? lines{"first"} : lines{});
        EXPECT_FALSE(h.finished);
    }
}

TEST(answer_lines, utf8_check_accepts_only_well_formed_text) {
    const struct {
        std::string bytes;
        bool valid;
    } cases[] = {
        {"plain text", true},         {"", true},
        {std::string("\0", 1), true}, {"\xC3\xA9", true},
        {"\xE2\x82\xAC", true},       {"\xF0\x9D\x84\x9E", true},
        {"\xF4\x8F\xBF\xBF", true},   {"\xED\x9F\xBF", true},
        {"\xE9t\xE9", false},         {"\x80", false},
        {"\xC0\x80", false},          {"\xE0\x80\xAF", false},
        {"\xF0\x8F\xBF\xBF", false},  {"\xED\xA0\x80", false},
        {"\xF4\x90\x80\x80", false},  {"\xF8\x88\x80\x80\x80", false},
        {"\xFF", false},              {"ab\xE2\x82", false},
        {"\xE2\x28\xA1", false},
    };
    for (const auto& c : cases) EXPECT_EQ(is_valid_utf8(c.bytes), c.valid) << testing::PrintToString(c.bytes);
}

} // namespace
