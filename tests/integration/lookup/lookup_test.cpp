// The lookup against real local CDDB servers: every configured server asked in order, failures
// skipped, reads per match, abort, and what the user is shown at the end.

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include <hostkit/plain_track.h>
#include <tunehall/menu_command.h>

#include "cddb/lookup_task.h"
#include "config/settings.h"
#include "http/http_filesystem.h"
#include "support/audio_files.h"
#include "support/local_server.h"
#include "support/test_host.h"

using testing_support::local_server;
using testing_support::test_host;

namespace {

// Tracks without files whose lengths lay out the fixture disc `discid`.
track_list fixture_disc(const std::string& discid) {
    track_list tracks;
    int n = 0;
    for (double seconds : testing_support::fixture_disc_lengths(discid))
        tracks.push_back(hostkit::make_plain_track("/music/" + discid + "/" + std::to_string(++n) + ".flac", seconds));
    return tracks;
}

server_record server_at(const local_server& s, const std::string& description) {
    server_record r;
    r.set_server("127.0.0.1");
    r.set_protocol("http");
    r.set_port(std::to_string(s.port()).c_str());
    r.set_address("/~cddb/cddb.cgi");
    r.set_description(description.c_str());
    return r;
}

// Stands in for the tagger dialog: keeps what the lookup handed over.
class captured_dialog : public tagger_dialog_factory {
public:
    explicit captured_dialog(std::vector<service_ref<lookup_state>>& opened) : opened_(opened) {}
    void open(HWND, service_ref<lookup_state> state) override { opened_.push_back(state); }

private:
    std::vector<service_ref<lookup_state>>& opened_;
};

struct lookup_fixture : ::testing::Test {
    test_host host;
    std::vector<service_ref<lookup_state>> opened;
    lookup_fixture() {
        host.add_service(filesystem::class_guid, make_http_filesystem());
        host.add_service(tagger_dialog_factory::class_guid, make_service<captured_dialog>(opened));
    }
    // Runs the context-menu command on `tracks`, as the user would.
    void run_command(const track_list& tracks) {
        for (auto& c : all_services<menu_command>())
            for (std::size_t i = 0; i < c->command_count(); ++i)
                if (std::string(c->command_name(i)) == "Get tags from discora") {
                    c->command_execute(i, tracks, nullptr);
                    return;
                }
        FAIL() << "no command \"Get tags from discora\"";
    }
    std::vector<std::string> records_of(std::size_t server) {
        std::vector<std::string> out;
        for (auto& r : opened.at(0)->results.at(server).records)
            out.push_back(std::string(r.get_field(disc_record::category)) + " " + r.get_field(disc_record::dtitle));
        return out;
    }
};

} // namespace

TEST_F(lookup_fixture, a_failing_first_server_is_skipped_and_the_second_answers_under_its_own_name) {
    local_server broken("tests/servers/cddb_server.py", {"--fault", "http-status:500"});
    local_server good("tests/servers/cddb_server.py");
    save_server_list({server_at(broken, "Broken mirror"), server_at(good, "Good mirror")});

    run_command(fixture_disc("12025d03"));

    ASSERT_EQ(opened.size(), 1u);
    ASSERT_EQ(opened[0]->results.size(), 2u);
    EXPECT_EQ(opened[0]->results[0].label, "Broken mirror");
    EXPECT_TRUE(opened[0]->results[0].records.empty());
    EXPECT_EQ(opened[0]->results[1].label, "Good mirror");
    EXPECT_EQ(records_of(1), (std::vector<std::string>{"country Ernest Ray Everett - Single CD"}));
    EXPECT_EQ(opened[0]->tracks.size(), 3u);
    auto lines = host.console_lines();
    EXPECT_NE(std::find(lines.begin(), lines.end(), "CDDB query failed"), lines.end());
    EXPECT_NE(std::find(lines.begin(), lines.end(), "found match: country 12025d03 Ernest Ray Everett - Single CD"),
              lines.end());
    EXPECT_TRUE(host.popups().empty());
}

TEST_F(lookup_fixture, three_inexact_matches_lead_to_three_reads) {
    testing_support::temp_folder db;
    const std::string entry = testing_support::read_file(testing_support::fixture("xmcd/entries/770bf909.xmcd"));
    for (const char* place : {"rock/aaaa0001", "jazz/aaaa0002", "folk/aaaa0003"}) {
        std::filesystem::create_directories((db / place).parent_path());
        testing_support::write_file(db / place, entry);
    }
    local_server server("tests/servers/cddb_server.py", {"--db", db.path().string()});
    save_server_list({server_at(server, "Near matches")});

    run_command(fixture_disc("770bf909"));

    ASSERT_EQ(opened.size(), 1u);
    EXPECT_EQ(records_of(0).size(), 3u);
    std::size_t reads = 0;
    for (auto& r : server.requests()) reads += r.find("cmd=cddb+read+") != std::string::npos;
    EXPECT_EQ(reads, 3u);
    auto lines = host.console_lines();
    EXPECT_EQ(std::count_if(lines.begin(), lines.end(), [](auto& l) { return l.rfind("found inexact match: ", 0) == 0; }), 3);
}

TEST_F(lookup_fixture, a_failed_read_drops_the_rest_of_that_server_only) {
    local_server refusing("tests/servers/cddb_server.py", {"--fault", "read-status:401"});
    local_server good("tests/servers/cddb_server.py");
    save_server_list({server_at(refusing, "Refusing"), server_at(good, "Good")});

    run_command(fixture_disc("d50dd30f"));  // two exact matches: misc and reggae

    ASSERT_EQ(opened.size(), 1u);
    EXPECT_TRUE(opened[0]->results[0].records.empty());
    std::size_t refused_reads = 0;
    for (auto& r : refusing.requests()) refused_reads += r.find("cmd=cddb+read+") != std::string::npos;
    EXPECT_EQ(refused_reads, 1u);  // the second match of that server was never read
    EXPECT_EQ(records_of(1), (std::vector<std::string>{"misc Various / Ska Island", "reggae Various / Ska Island"}));
}

TEST_F(lookup_fixture, cancelling_shows_neither_the_dialog_nor_a_message) {
    local_server slow("tests/servers/cddb_server.py", {"--fault", "slow:0.4"});
    save_server_list({server_at(slow, "Slow"), server_at(slow, "Slow again")});
    std::atomic<bool> stop{false};
    std::thread canceller([&] {
        while (!stop && slow.requests().empty()) std::this_thread::sleep_for(std::chrono::milliseconds(20));
        host.host().tasks().abort_all();
    });
    run_command(fixture_disc("12025d03"));
    stop = true;
    canceller.join();
    host.host().tasks().clear_abort();
    EXPECT_TRUE(opened.empty());
    EXPECT_TRUE(host.popups().empty());
    EXPECT_EQ(slow.requests().size(), 1u);  // the second server was never asked
}

// Nothing stored (the built-in placeholder server is the whole list), then an empty list: the
// message lists every file, without a hint how to set a server up (that is the host's to say).
TEST_F(lookup_fixture, nothing_found_lists_every_file_in_the_message) {
    run_command(fixture_disc("12025d03"));
    save_server_list({});
    run_command(fixture_disc("12025d03"));
    EXPECT_TRUE(opened.empty());
    auto popups = host.popups();
    ASSERT_EQ(popups.size(), 2u);
    for (const auto& popup : popups) {
        EXPECT_EQ(popup.title, "discora tagger");
        EXPECT_EQ(popup.message,
                  "No information found on server for files:\n\"/music/12025d03/1.flac\"\n\"/music/12025d03/2.flac\"\n"
                  "\"/music/12025d03/3.flac\"");
    }
}

namespace {
class subsong_track : public track_handle {
public:
    subsong_track(const char* path, std::uint32_t index) : path_(path), index_(index) {}
    const char* path() const override { return path_; }
    std::uint32_t subsong() const override { return index_; }
    double length() const override { return 60.0; }
    bool get_info(track_info&) const override { return false; }

private:
    const char* path_;
    std::uint32_t index_;
};
} // namespace

TEST(no_information_message, names_subsongs_by_index_and_unknown_locations) {
    track_list tracks{make_service<subsong_track>("/cd/image.cue", 3), make_service<subsong_track>("/cd/a.flac", 0),
                      make_service<subsong_track>("", 0)};
    EXPECT_EQ(no_information_message(tracks),
              "No information found on server for files:\n\"/cd/image.cue\" / index: 3\n\"/cd/a.flac\"\n[invalid location]");
}
