// The server editor as the page opens it: what it shows in each mode, how the port field is
// read, and that what the user typed is stored as typed.

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "preferences_test_fixture.h"

namespace preferences_testing {
namespace {

// What the editor showed when it opened.
struct editor_content {
    std::string title;
    std::vector<std::string> protocols;
    int protocol_selection = -1;
    bool protocol_enabled = true;
    bool shown = false;
    bool registered_as_modal = false;
    std::string server, port, address, description;
};

editor_content read_content(const headless_view& editor) {
    return {editor.title(),
            editor.combo_items(protocol_field),
            editor.combo_selection(protocol_field),
            editor.is_enabled(protocol_field),
            editor.shown(),
            ModalDialog_Current() == editor.handle(),
            editor.get_text(server_field),
            editor.get_text(port_field),
            editor.get_text(address_field),
            editor.get_text(description_field)};
}

class server_editor_test : public preferences_test {
protected:
    // Opens the editor on the page's first row with a double click, lets `act` answer it, and
    // returns what the editor showed.
    editor_content edit_first_row(open_page& page, std::function<void(headless_view&)> act) {
        editor_content seen;
        when_editor_opens([&seen, act](headless_view& editor) {
            seen = read_content(editor);
            act(editor);
        });
        page.view().click_cell(servers, 0, 0, true);
        run_queued();
        return seen;
    }
};

TEST_F(server_editor_test, adding_shows_the_built_in_server_and_the_one_protocol_fixed) {
    open_page page;
    editor_content seen;
    when_editor_opens([&seen](headless_view& editor) {
        seen = read_content(editor);
        editor.click(cancel);
    });
    page.view().click(add_button);
    run_queued();

    const server_record builtin = builtin_server();
    EXPECT_EQ(seen.protocols, std::vector<std::string>{"HTTP"});
    EXPECT_EQ(seen.protocol_selection, 0);
    EXPECT_FALSE(seen.protocol_enabled);
    EXPECT_TRUE(seen.shown);
    EXPECT_TRUE(seen.registered_as_modal);
    EXPECT_EQ(seen.server, builtin.get_server());
    EXPECT_EQ(seen.port, builtin.get_port());
    EXPECT_EQ(seen.address, builtin.get_address());
    EXPECT_EQ(seen.description, builtin.get_description());
    EXPECT_EQ(ModalDialog_Current(), nullptr);  // left the registry when it closed
}

TEST_F(server_editor_test, editing_shows_the_chosen_server) {
    save_server_list({make_server("mirror.cddb.invalid", "http", "8080", "/cgi-bin/cddb.cgi", "Mirror")});
    open_page page;
    editor_content seen = edit_first_row(page, [](headless_view& editor) { editor.click(cancel); });
    EXPECT_FALSE(seen.protocol_enabled);
    EXPECT_EQ(seen.server, "mirror.cddb.invalid");
    EXPECT_EQ(seen.port, "8080");
    EXPECT_EQ(seen.address, "/cgi-bin/cddb.cgi");
    EXPECT_EQ(seen.description, "Mirror");
}

TEST_F(server_editor_test, stores_what_was_typed_without_checks_and_keeps_the_protocol) {
    // An upper-case protocol name is still one the HTTP handler takes; the editor must not
    // rewrite it even though its drop-down shows "HTTP".
    save_server_list({make_server("mirror.cddb.invalid", "Http", "8080", "/cgi-bin/cddb.cgi", "Mirror")});
    open_page page;
    edit_first_row(page, [](headless_view& editor) {
        editor.type_text(server_field, "");
        editor.type_text(port_field, "");
        editor.type_text(address_field, "no leading slash");
        editor.type_text(description_field, "");
        editor.click(ok);
    });
    page.instance().apply();
    EXPECT_EQ(next_session_servers(), (server_list{make_server("", "Http", "0", "no leading slash", "")}));
}

// The port is read as the system reads a signed integer from a dialog field and stored as its
// decimal text.
TEST_F(server_editor_test, the_port_is_stored_as_the_decimal_text_of_the_number_read) {
    const std::pair<const char*, const char*> cases[] = {
        {"", "0"},       {"0042", "42"},       {"-7", "-7"},    {"12x", "0"},
        {"abc", "0"},    {"-", "0"},           {"  8880", "8880"}, {"88 80", "0"},
        {"2147483647", "2147483647"},           {"-2147483648", "-2147483648"},
        {"2147483648", "0"},                    {"99999999999999999999999", "0"},
    };
    for (const auto& [typed, stored_text] : cases) {
        SCOPED_TRACE(typed);
        save_server_list({make_server("mirror.cddb.invalid", "http", "8080", "/cgi-bin/cddb.cgi", "Mirror")});
        open_page page;
        edit_first_row(page, [typed = typed](headless_view& editor) {
            editor.type_text(port_field, typed);
            editor.click(ok);
        });
        page.instance().apply();
        std::optional<server_list> stored = next_session_servers();
        ASSERT_TRUE(stored && stored->size() == 1u);
        EXPECT_STREQ(stored->front().get_port(), stored_text);
    }
}

} // namespace
} // namespace preferences_testing
