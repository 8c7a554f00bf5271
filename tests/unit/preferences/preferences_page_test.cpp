// The "discora Tagger" preferences page as the user meets it: what it shows when it opens, when
// it counts as changed, adding, editing and removing servers, Reset, Apply, and what reaches the
// store (only Apply writes anything).

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <tunehall/dark_mode.h>

#include "preferences_test_fixture.h"

namespace preferences_testing {
namespace {

using row_texts = std::vector<std::pair<std::string, std::string>>;

const server_record alpha = make_server("alpha.cddb.invalid", "http", "80", "/~cddb/cddb.cgi", "Alpha");
const server_record beta = make_server("beta.cddb.invalid", "http", "8080", "/cgi-bin/cddb.cgi", "Beta");
const server_record gamma = make_server("gamma.cddb.invalid", "http", "8880", "/cddb", "Gamma");

class preferences_page_test : public preferences_test {};

TEST_F(preferences_page_test, opening_with_nothing_stored_shows_the_built_in_server_and_the_email) {
    cfg_email.set("someone@example.invalid");
    open_page page;
    const server_record builtin = builtin_server();
    EXPECT_EQ(page.rows(), (row_texts{{builtin.get_server(), builtin.get_description()}}));
    EXPECT_EQ(page.view().list_row_data(servers, 0), 0);
    EXPECT_EQ(page.view().get_text(email), "someone@example.invalid");

    // Opening is not a change, and stores nothing.
    EXPECT_EQ(page.state(), unchanged_state);
    EXPECT_EQ(page.state_changes(), 0);
    EXPECT_EQ(stored_server_blob(), std::nullopt);
}

// The host's dark mode (its theming is the host's business): which windows are attached now.
class dark_mode_recorder : public dark_mode_helper {
public:
    class attachment : public dark_mode_attachment {
    public:
        attachment(dark_mode_recorder& owner, HWND window) : owner_(owner), window_(window) {}
        ~attachment() override { std::erase(owner_.attached, window_); }

    private:
        dark_mode_recorder& owner_;
        HWND window_;
    };
    service_ref<dark_mode_attachment> attach(HWND window) override {
        attached.push_back(window);
        return make_service<attachment>(*this, window);
    }
    std::vector<HWND> attached;
};

TEST_F(preferences_page_test, the_page_follows_the_hosts_dark_mode_while_it_is_open) {
    auto dark = make_service<dark_mode_recorder>();
    host.add_service(dark_mode_helper::class_guid, dark);
    open_page page;
    EXPECT_EQ(dark->attached, std::vector<HWND>{page.view().handle()});
    EXPECT_EQ(page.state() & 0x10000u, 0x10000u);  // the page says it can be dark
    page.close();
    EXPECT_TRUE(dark->attached.empty());
}

TEST_F(preferences_page_test, lists_only_servers_a_protocol_handler_supports_with_their_positions) {
    server_record upper_case = gamma;
    upper_case.set_protocol("HTTP");
    save_server_list({alpha, make_server("cddbp.cddb.invalid", "cddbp", "8880", "-", "Not reachable"), upper_case});
    open_page page;
    EXPECT_EQ(page.rows(), (row_texts{{"alpha.cddb.invalid", "Alpha"}, {"gamma.cddb.invalid", "Gamma"}}));
    EXPECT_EQ(page.view().list_row_data(servers, 0), 0);
    EXPECT_EQ(page.view().list_row_data(servers, 1), 2);
    EXPECT_EQ(page.view().list_selection(servers), std::nullopt);
}

TEST_F(preferences_page_test, typing_the_email_marks_the_page_changed_once_and_apply_stores_it) {
    save_server_list({alpha});
    open_page page;
    const std::size_t saves = host.config_saves();
    page.view().type_text(email, "ann@example.invalid");
    EXPECT_EQ(page.state(), changed_state);
    page.view().type_text(email, "bob@example.invalid");
    EXPECT_EQ(page.state(), changed_state);
    EXPECT_EQ(page.state_changes(), 1);
    EXPECT_EQ(host.config_saves(), saves);

    page.instance().apply();
    EXPECT_EQ(page.state(), unchanged_state);
    EXPECT_EQ(next_session_email(), "bob@example.invalid");
    EXPECT_EQ(cfg_email.get(), "bob@example.invalid");
    EXPECT_EQ(next_session_servers(), server_list{alpha});

    // A change after Apply is a new change, and the host hears of it again.
    page.view().type_text(email, "cy@example.invalid");
    EXPECT_EQ(page.state(), changed_state);
    EXPECT_EQ(page.state_changes(), 2);
}

TEST_F(preferences_page_test, add_then_ok_appends_the_server_and_selects_its_row) {
    save_server_list({alpha, beta});
    open_page page;
    when_editor_opens([](headless_view& editor) {
        editor.type_text(description_field, "Added");
        editor.click(ok);
    });
    page.view().click(add_button);
    run_queued();

    server_record added = builtin_server();
    added.set_description("Added");
    EXPECT_EQ(page.rows(), (row_texts{{"alpha.cddb.invalid", "Alpha"}, {"beta.cddb.invalid", "Beta"}, {added.get_server(), "Added"}}));
    EXPECT_EQ(page.view().list_selection(servers), 2u);
    EXPECT_EQ(page.state(), changed_state);
    EXPECT_EQ(page.state_changes(), 1);
    EXPECT_EQ(open_editor(), nullptr);

    // The rest of the new record is the built-in server's, as the editor showed it.
    page.instance().apply();
    EXPECT_EQ(next_session_servers(), (server_list{alpha, beta, added}));
}

TEST_F(preferences_page_test, add_dismissed_by_cancel_or_closing_leaves_the_list_and_the_page_unchanged) {
    save_server_list({alpha});
    const std::optional<std::string> stored = stored_server_blob();
    for (bool by_close : {false, true}) {
        open_page page;
        when_editor_opens([by_close](headless_view& editor) {
            editor.type_text(server_field, "typed.but.dismissed.invalid");
            if (by_close) editor.close();
            else editor.click(cancel);
        });
        page.view().click(add_button);
        run_queued();

        EXPECT_EQ(page.rows(), (row_texts{{"alpha.cddb.invalid", "Alpha"}}));
        EXPECT_EQ(page.state(), unchanged_state);
        EXPECT_EQ(page.state_changes(), 0);
        EXPECT_EQ(open_editor(), nullptr);
        page.instance().apply();
        EXPECT_EQ(stored_server_blob(), stored);
    }
}

TEST_F(preferences_page_test, a_double_click_edits_that_row) {
    save_server_list({alpha, beta});
    open_page page;
    when_editor_opens([](headless_view& editor) {
        editor.type_text(description_field, "Beta, renamed");
        editor.click(ok);
    });
    page.view().click_cell(servers, 1, 0, true);
    run_queued();

    EXPECT_EQ(page.rows(), (row_texts{{"alpha.cddb.invalid", "Alpha"}, {"beta.cddb.invalid", "Beta, renamed"}}));
    EXPECT_EQ(page.state(), changed_state);
    page.instance().apply();
    server_record renamed = beta;
    renamed.set_description("Beta, renamed");
    EXPECT_EQ(next_session_servers(), (server_list{alpha, renamed}));
}

TEST_F(preferences_page_test, edit_and_remove_without_a_selection_do_nothing) {
    save_server_list({alpha, beta});
    open_page page;
    bool opened = false;
    expect_no_editor(opened);
    page.view().click(edit_button);
    page.view().click(remove_button);
    run_queued();
    EXPECT_FALSE(opened);
    EXPECT_EQ(page.rows().size(), 2u);
    EXPECT_EQ(page.state(), unchanged_state);
}

// The row selected afterwards is max(new length - 1, removed index): the last row, unless the
// last row was removed, when nothing is selected.
TEST_F(preferences_page_test, remove_drops_the_server_and_selects_as_the_rule_says) {
    const struct {
        server_list before;
        std::size_t selected;
        server_list after;
        std::optional<std::size_t> selection_after;
    } cases[] = {{{alpha, beta, gamma}, 0, {beta, gamma}, 1},
                 {{alpha, beta, gamma}, 1, {alpha, gamma}, 1},
                 {{alpha, beta, gamma}, 2, {alpha, beta}, std::nullopt},
                 {{alpha}, 0, {}, std::nullopt}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.selected);
        save_server_list(c.before);
        open_page page;
        page.view().select_row(servers, c.selected);
        page.view().click(remove_button);

        EXPECT_EQ(page.view().list_row_count(servers), c.after.size());
        EXPECT_EQ(page.view().list_selection(servers), c.selection_after);
        EXPECT_EQ(page.state(), changed_state);
        EXPECT_EQ(page.state_changes(), 1);
        page.instance().apply();
        EXPECT_EQ(next_session_servers(), c.after);
    }
}

TEST_F(preferences_page_test, reset_shows_the_defaults_and_counts_as_a_change) {
    save_server_list({alpha, beta});
    open_page page;
    page.view().type_text(email, "ann@example.invalid");
    page.instance().apply();
    const int changes_before = page.state_changes();

    page.instance().reset();
    EXPECT_EQ(page.view().get_text(email), default_email);
    EXPECT_EQ(page.rows(), (row_texts{{builtin_server().get_server(), builtin_server().get_description()}}));
    EXPECT_EQ(page.state(), changed_state);
    EXPECT_EQ(page.state_changes(), changes_before + 1);
    page.instance().apply();
    EXPECT_EQ(next_session_servers(), (server_list{builtin_server()}));
    EXPECT_EQ(next_session_email(), default_email);
}

TEST_F(preferences_page_test, closing_without_apply_leaves_the_store_as_it_was) {
    const std::function<void(open_page&)> changes[] = {
        [](open_page& p) { p.view().type_text(email, "ann@example.invalid"); },
        [](open_page& p) { p.instance().reset(); },
        [](open_page& p) {
            p.view().select_row(servers, 0);
            p.view().click(remove_button);
        },
        [](open_page& p) {
            when_editor_opens([](headless_view& e) { e.click(ok); });
            p.view().click(add_button);
        },
        [](open_page& p) {
            when_editor_opens([](headless_view& e) {
                e.type_text(port_field, "1");
                e.click(ok);
            });
            p.view().click_cell(servers, 1, 1, true);
        },
    };
    save_server_list({alpha, beta});
    const std::optional<std::string> stored = stored_server_blob();
    const std::size_t saves = host.config_saves();
    for (std::size_t i = 0; i < std::size(changes); ++i) {
        SCOPED_TRACE(i);
        {
            open_page page;
            changes[i](page);
            run_queued();
            EXPECT_EQ(page.state(), changed_state);
            page.close();
        }
        EXPECT_EQ(stored_server_blob(), stored);
        EXPECT_EQ(host.config_saves(), saves);
        EXPECT_EQ(next_session_email(), "<absent>");
        // The next time the page opens it shows what is stored.
        open_page again;
        EXPECT_EQ(again.rows(), (row_texts{{"alpha.cddb.invalid", "Alpha"}, {"beta.cddb.invalid", "Beta"}}));
    }
}

TEST_F(preferences_page_test, buttons_that_open_a_dialog_bring_the_open_editor_forward_instead) {
    save_server_list({alpha});
    open_page page;
    page.view().select_row(servers, 0);
    bool second_editor = false;
    unsigned pokes = 0;
    HWND current_during = nullptr, editor_window = nullptr;
    when_editor_opens([&](headless_view& editor) {
        editor_window = editor.handle();
        const unsigned before = ModalDialog_PokeCount();
        for (int button : {add_button, edit_button, retrieve_button}) {
            expect_no_editor(second_editor);  // a second editor would be cancelled, not waited on
            page.view().click(button);
        }
        pokes = ModalDialog_PokeCount() - before;
        current_during = ModalDialog_Current();
        editor.click(cancel);
    });
    page.view().click(add_button);
    run_queued();

    EXPECT_EQ(pokes, 3u);
    EXPECT_FALSE(second_editor);
    EXPECT_EQ(current_during, editor_window);
    EXPECT_TRUE(host.popups().empty());  // no retrieval was tried
    EXPECT_EQ(page.rows(), (row_texts{{"alpha.cddb.invalid", "Alpha"}}));
    EXPECT_EQ(page.state(), unchanged_state);
    EXPECT_EQ(ModalDialog_Current(), nullptr);
}

} // namespace
} // namespace preferences_testing
