// "Retrieve..." on the preferences page against the project's local CDDB server: the list the
// server publishes replaces the page's list when it holds reachable servers, and every other
// outcome is a message (or, after Cancel, nothing) with the list left as it was.

#include <atomic>
#include <chrono>
#include <optional>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "http/http_filesystem.h"
#include "support/local_server.h"
#include "support/temp_folder.h"
#include "unit/preferences/preferences_test_fixture.h"

namespace preferences_testing {
namespace {

using testing_support::local_server;

const std::string cddb_server_script = "tests/servers/cddb_server.py";
// Five sites, of which the first and the third are reachable over HTTP.
const std::string five_sites = "tests/servers/cddb_db/sites.txt";
const std::string list_unaltered = "\n\nThe current server list will be left unaltered.";

std::string error_message(const std::string& server, const std::string& error) {
    return "An error occurred while trying to retrieve a server list from " + server + ".\n\n" + error + list_unaltered;
}

std::string no_servers_message(const std::string& server) {
    return "The server list retrieved from " + server +
           " contains no servers that are accessible by one of the supported protocols." + list_unaltered;
}

server_record local_record(const local_server& s) {
    return make_server("127.0.0.1", "http", std::to_string(s.port()).c_str(), "/~cddb/cddb.cgi", "Local test server");
}

class server_list_retrieval_test : public preferences_test {
protected:
    server_list_retrieval_test() { host.add_service(filesystem::class_guid, make_http_filesystem()); }

    // A file of site lines for the server's --sites option.
    std::string sites_file(const std::string& lines) {
        const auto path = files / "sites.txt";
        testing_support::write_file(path, lines);
        return path.string();
    }

    // Selects row `row` of the page's list and presses "Retrieve...".
    static void retrieve(open_page& page, std::size_t row = 0) {
        page.view().select_row(servers, row);
        page.view().click(retrieve_button);
    }

    testing_support::temp_folder files{"tessellon-sites"};
};

// The page's working list changes, the stored one only with "Apply": closing the page first
// keeps it.
TEST_F(server_list_retrieval_test, two_http_sites_of_five_become_the_list_in_the_servers_order) {
    local_server server(cddb_server_script, {"--sites", five_sites});
    save_server_list({local_record(server)});
    const std::optional<std::string> stored = stored_server_blob();
    {
        open_page page;
        retrieve(page);
        ASSERT_EQ(page.rows().size(), 2u);
    }
    EXPECT_EQ(stored_server_blob(), stored);
    EXPECT_EQ(next_session_servers(), (server_list{local_record(server)}));

    open_page page;
    retrieve(page);
    EXPECT_EQ(page.rows(), (std::vector<std::pair<std::string, std::string>>{
                               {"a.cddb.tessellon.invalid", "Test primary site, San Jose area"},
                               {"b.cddb.tessellon.invalid", "Southern test mirror, Sydney"}}));
    EXPECT_EQ(page.state(), changed_state);
    EXPECT_EQ(page.state_changes(), 1);
    EXPECT_TRUE(host.popups().empty());
    ASSERT_EQ(server.requests().size(), 2u);
    EXPECT_NE(server.requests().back().find("cmd=sites&"), std::string::npos) << server.requests().back();
    EXPECT_EQ(stored_server_blob(), stored);

    page.instance().apply();
    EXPECT_EQ(next_session_servers(),
              (server_list{make_server("a.cddb.tessellon.invalid", "http", "80", "/~cddb/cddb.cgi",
                                       "Test primary site, San Jose area"),
                           make_server("b.cddb.tessellon.invalid", "http", "8080", "/cgi-bin/cddb.cgi",
                                       "Southern test mirror, Sydney")}));
}

// Every other answer is one message, the error between two blank lines, and the list stays.
TEST_F(server_list_retrieval_test, an_answer_without_reachable_sites_or_a_failure_is_a_message_and_keeps_the_list) {
    struct outcome_case {
        const char* name;
        const char* fault;                 // the server's fault, or "" for none
        std::optional<std::string> sites;  // site lines, or none (the server has no site information: 401)
        std::string message_begins, message_ends;
    };
    const std::string failed = "An error occurred while trying to retrieve a server list from 127.0.0.1.\n\n";
    const std::string bad_status = "Invalid status code. Expected 210 or 401, got 500" + list_unaltered;
    const outcome_case cases[] = {
        {"only other protocols", "",
         "a.cddb.invalid cddbp 8880 - N037.21 W121.55 First\r\nb.cddb.invalid cddbp 888 - s033.52 e151.12 Second\r\n",
         no_servers_message("127.0.0.1"), ""},
        {"no site information", "", std::nullopt, no_servers_message("127.0.0.1"), ""},
        {"cddb status 500", "cddb-status:500", std::nullopt, failed + bad_status, ""},
        {"http status 500", "http-status:500", std::nullopt, failed + "HTTP request to http://127.0.0.1:", " failed: 500" + list_unaltered},
        // The second line lacks its longitude.
        {"malformed site line", "",
         "a.cddb.invalid http 80 /~cddb/cddb.cgi N037.21 W121.55 Fine\r\nb.cddb.invalid http 80 /~cddb/cddb.cgi N037.21\r\n",
         failed + "Unsupported format or corrupted file" + list_unaltered, ""},
    };
    for (const outcome_case& c : cases) {
        SCOPED_TRACE(c.name);
        std::vector<std::string> args;
        if (c.sites) args = {"--sites", sites_file(*c.sites)};
        if (*c.fault) args.insert(args.end(), {"--fault", c.fault});
        local_server server(cddb_server_script, args);
        save_server_list({local_record(server)});
        const std::size_t popups_before = host.popups().size();
        open_page page;
        retrieve(page);

        const auto popups = host.popups();
        ASSERT_EQ(popups.size(), popups_before + 1);
        const std::string& message = popups.back().message;
        EXPECT_EQ(popups.back().title, "discora Tagger");
        EXPECT_EQ(popups.back().flags, 0u);
        ASSERT_GE(message.size(), c.message_begins.size() + c.message_ends.size());
        EXPECT_EQ(message.substr(0, c.message_begins.size()), c.message_begins);
        EXPECT_EQ(message.substr(message.size() - c.message_ends.size()), c.message_ends);
        // The error between the blank lines is one line.
        EXPECT_EQ(std::count(message.begin(), message.end(), '\n'), message.rfind(failed, 0) == 0 ? 4 : 2) << message;
        EXPECT_EQ(page.rows(), (std::vector<std::pair<std::string, std::string>>{{"127.0.0.1", "Local test server"}}));
        EXPECT_EQ(page.state(), unchanged_state);
        EXPECT_EQ(page.state_changes(), 0);
    }
}

TEST_F(server_list_retrieval_test, a_selected_server_without_a_protocol_handler_is_an_error_and_nothing_is_sent) {
    local_server server(cddb_server_script, {"--sites", five_sites});
    server_record unreachable = local_record(server);
    unreachable.set_server("cddbp.cddb.invalid");
    unreachable.set_protocol("cddbp");
    // The list shows one row, the HTTP server's; its position, 0, names the cddbp record.
    save_server_list({unreachable, local_record(server)});
    open_page page;
    ASSERT_EQ(page.rows().size(), 1u);
    retrieve(page, 0);

    const auto popups = host.popups();
    ASSERT_EQ(popups.size(), 1u);
    EXPECT_EQ(popups[0].message, error_message("cddbp.cddb.invalid", "Service not found"));
    EXPECT_TRUE(server.requests().empty());
    EXPECT_EQ(page.state(), unchanged_state);
}

TEST_F(server_list_retrieval_test, nothing_selected_does_nothing) {
    local_server server(cddb_server_script, {"--sites", five_sites});
    save_server_list({local_record(server)});
    open_page page;
    page.view().click(retrieve_button);
    EXPECT_TRUE(host.popups().empty());
    EXPECT_TRUE(server.requests().empty());
    EXPECT_EQ(page.state(), unchanged_state);
}

TEST_F(server_list_retrieval_test, cancelling_the_progress_shows_nothing_and_keeps_the_list) {
    // Every answer line comes late, so the exchange is still running when the user cancels.
    local_server server(cddb_server_script, {"--sites", five_sites, "--fault", "slow:5"});
    save_server_list({local_record(server)});
    open_page page;

    std::atomic<bool> retrieval_over{false};
    std::thread user([&] {
        // Cancels as the user would once the request reached the server.
        while (!retrieval_over.load()) {
            if (!server.requests().empty()) {
                host.host().tasks().abort_all();
                return;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    });
    retrieve(page);
    retrieval_over.store(true);
    user.join();
    host.host().tasks().clear_abort();

    EXPECT_EQ(server.requests().size(), 1u);
    EXPECT_TRUE(host.popups().empty());
    EXPECT_EQ(page.rows(), (std::vector<std::pair<std::string, std::string>>{{"127.0.0.1", "Local test server"}}));
    EXPECT_EQ(page.state(), unchanged_state);
}

} // namespace
} // namespace preferences_testing
