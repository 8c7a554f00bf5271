// The server editor as the page opens it: what it shows, how the port field is read, and that
// what the user typed is stored as typed.

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "preferences_test_fixture.h"

namespace preferences_testing {
namespace {

class server_editor_test : public preferences_test {
protected:
    // Opens the editor on the page's only row with a double click and lets `act` answer it;
    // then applies the page and returns the list the next session finds.
    server_list edit_and_apply(const char* protocol, std::function<void(headless_view&)> act) {
        save_server_list({make_server("mirror.cddb.invalid", protocol, "8080", "/cgi-bin/cddb.cgi", "Mirror")});
        open_page page;
        when_editor_opens(std::move(act));
        page.view().click_cell(servers, 0, 0, true);
        run_queued();
        page.instance().apply();
        return next_session_servers().value_or(server_list{});
    }
};

TEST_F(server_editor_test, adding_shows_the_built_in_server_and_the_one_protocol_fixed) {
    open_page page;
    when_editor_opens([](headless_view& editor) {
        EXPECT_EQ(editor.combo_items(protocol_field), std::vector<std::string>{"HTTP"});
        EXPECT_EQ(editor.combo_selection(protocol_field), 0);
        EXPECT_FALSE(editor.is_enabled(protocol_field));
        EXPECT_TRUE(editor.shown());
        EXPECT_EQ(ModalDialog_Current(), editor.handle());
        const server_record builtin = builtin_server();
        EXPECT_EQ(editor.get_text(server_field), builtin.get_server());
        EXPECT_EQ(editor.get_text(port_field), builtin.get_port());
        EXPECT_EQ(editor.get_text(address_field), builtin.get_address());
        EXPECT_EQ(editor.get_text(description_field), builtin.get_description());
        editor.click(cancel);
    });
    page.view().click(add_button);
    run_queued();
    EXPECT_EQ(ModalDialog_Current(), nullptr);  // left the registry when it closed
}

TEST_F(server_editor_test, stores_what_was_typed_without_checks_and_keeps_the_protocol) {
    // "Http" is still a protocol the HTTP handler takes: the editor must not rewrite it to the
    // "HTTP" its drop-down shows.
    server_list stored = edit_and_apply("Http", [](headless_view& editor) {
        EXPECT_FALSE(editor.is_enabled(protocol_field));
        editor.type_text(server_field, "");
        editor.type_text(port_field, "");
        editor.type_text(address_field, "no leading slash");
        editor.type_text(description_field, "");
        editor.click(ok);
    });
    EXPECT_EQ(stored, (server_list{make_server("", "Http", "0", "no leading slash", "")}));
}

// The port is read as the system reads a signed integer from a dialog field, stored as decimal text.
TEST_F(server_editor_test, the_port_is_stored_as_the_decimal_text_of_the_number_read) {
    const std::pair<const char*, const char*> cases[] = {
        {"", "0"},     {"0042", "42"}, {"-7", "-7"},         {"12x", "0"},
        {"abc", "0"},  {"-", "0"},     {"  8880", "8880"},   {"88 80", "0"},
        {"2147483647", "2147483647"},  {"-2147483648", "-2147483648"},
        {"2147483648", "0"},           {"99999999999999999999999", "0"},
    };
    for (const auto& [typed, stored_text] : cases) {
        SCOPED_TRACE(typed);
        server_list stored = edit_and_apply("http", [typed = typed](headless_view& editor) {
            editor.type_text(port_field, typed);
            editor.click(ok);
        });
        ASSERT_EQ(stored.size(), 1u);
        EXPECT_STREQ(stored.front().get_port(), stored_text);
    }
}

} // namespace
} // namespace preferences_testing
