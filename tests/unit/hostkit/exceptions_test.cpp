// The host's exception families: what each kind is a kind of, and its default text.

#include <gtest/gtest.h>

#include <functional>

#include <tunehall/exceptions.h>

namespace {

struct kind_case {
    const char* name;
    std::function<void()> raise;
    const char* text;
    bool is_io;
    bool is_data;
};

} // namespace

TEST(exceptions, every_kind_carries_its_default_text_and_belongs_to_its_family) {
    const kind_case cases[] = {
        {"io", [] { throw tunehall_io::exception_io(); }, "Input/output error", true, false},
        {"data", [] { throw tunehall_io::exception_io_data(); }, "Unsupported format or corrupted file", true, true},
        {"truncation", [] { throw tunehall_io::exception_io_data_truncation(); }, "Unsupported format or corrupted file", true, true},
        {"not found", [] { throw tunehall_io::exception_io_not_found(); }, "Object not found", true, false},
        {"denied", [] { throw tunehall_io::exception_io_denied(); }, "Access denied", true, false},
        {"already exists", [] { throw tunehall_io::exception_io_already_exists(); }, "Object already exists", true, false},
        {"aborted", [] { throw tunehall_io::exception_aborted(); }, "User abort", true, false},
        {"bad cuesheet", [] { throw exception_bad_cuesheet("invalid INDEX time syntax"); }, "invalid INDEX time syntax", true, true},
        {"service", [] { throw exception_service_not_found(); }, "Service not found", false, false},
        {"extension", [] { throw exception_service_extension_not_found(); }, "Service extension not found", false, false},
        {"overflow", [] { throw vexa::exception_overflow(); }, "Overflow", false, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        bool caught_io = false, caught_data = false;
        std::string text;
        try {
            c.raise();
        } catch (const tunehall_io::exception_io_data& e) {
            caught_io = caught_data = true;
            text = e.what();
        } catch (const tunehall_io::exception_io& e) {
            caught_io = true;
            text = e.what();
        } catch (const std::exception& e) {
            text = e.what();
        }
        EXPECT_EQ(text, c.text);
        EXPECT_EQ(caught_io, c.is_io);
        EXPECT_EQ(caught_data, c.is_data);
    }
}

TEST(exceptions, windows_errors_carry_their_code) {
    try {
        throw exception_win32(5, "Access is denied.");
    } catch (const exception_win32& e) {
        EXPECT_EQ(e.code(), 5u);
        EXPECT_STREQ(e.what(), "Access is denied.");
    }
}
