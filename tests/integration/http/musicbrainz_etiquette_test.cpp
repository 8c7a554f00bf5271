// How the Linux host's HTTP treats the MusicBrainz web service: it says who is asking, keeps to
// one request a second across all threads, asks again when the service is busy, and follows
// redirects. Against the project's MusicBrainz test server on 127.0.0.1, named as the service
// through the environment as the component's lookup does.

#include <algorithm>
#include <chrono>
#include <latch>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <tunehall/exceptions.h>

#include "http/http_filesystem.h"
#include "http/http_request_policy.h"
#include "support/failure_of.h"
#include "support/local_server.h"
#include "unit/musicbrainz/mb_test_data.h"

namespace {

using testing_support::local_server;
using names = std::vector<std::string>;

constexpr const char* server_script = "tests/servers/musicbrainz_server.py";
const std::string dark_disc = "c.J3z3pava1oPzXD0K2e9q48lJc-";
const std::string ziggy_disc = "pphmFbEaZKk7KDKQ_AKCMVtrjIg-";
const std::string service_agent = "User-Agent: Tessellon/0.9 ( https://tessellon.invalid/contact )";
const std::string plain_agent = "User-Agent: Tessellon/0.9";

std::string lookup_target(const std::string& disc_id) {
    return "/ws/2/discid/" + disc_id + "?inc=recordings+artist-credits";
}

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

bool has_line(const names& lines, const std::string& line) {
    return std::find(lines.begin(), lines.end(), line) != lines.end();
}

// The whole body at `url`, through the host's HTTP handler.
std::string fetch(const std::string& url, abort_source& abort) {
    file_ptr f = make_http_filesystem()->open(url.c_str(), filesystem::open_mode::read, abort);
    std::string body;
    char chunk[4096];
    while (std::size_t n = f->read(chunk, sizeof chunk, abort)) body.append(chunk, n);
    return body;
}

std::string fetch(const std::string& url) {
    abort_source_dummy abort;
    return fetch(url, abort);
}

using testing_support::failure_of;

std::vector<double> gaps_between(const std::vector<double>& times) {
    std::vector<double> gaps;
    for (std::size_t i = 1; i < times.size(); ++i) gaps.push_back(times[i] - times[i - 1]);
    return gaps;
}

// A MusicBrainz test server that the environment names as the web service.
struct musicbrainz_service : testing::Test {
    local_server server{server_script};
    mb_testing::scoped_environment service_host{"TESSELLON_MUSICBRAINZ_HOST",
                                                ("127.0.0.1:" + std::to_string(server.port())).c_str()};

    std::string lookup_url(const std::string& disc_id = dark_disc) const {
        return server.base_url() + lookup_target(disc_id);
    }
};

bool gets_service_rules(const http_request_policy& policy) {
    return policy.min_interval.count() > 0 && policy.retries_on_503 > 0 && policy.user_agent != "Tessellon/0.9";
}

} // namespace

TEST(musicbrainz_etiquette, only_the_service_host_itself_gets_the_services_rules_and_the_public_one_https) {
    struct host_case {
        const char* service;  // TESSELLON_MUSICBRAINZ_HOST, or null
        const char* url;
        bool service_rules;
        const char* sent_to = nullptr;  // null: the URL itself
    };
    const host_case cases[] = {
        {nullptr, "http://musicbrainz.org/ws/2/discid/x?inc=recordings+artist-credits", true,
         "https://musicbrainz.org/ws/2/discid/x?inc=recordings+artist-credits"},
        {nullptr, "http://musicbrainz.org:80/ws/2/discid/x", true, "https://musicbrainz.org/ws/2/discid/x"},
        {nullptr, "https://MusicBrainz.ORG/ws/2/discid/x", true},
        {nullptr, "http://musicbrainz.org:8080/ws/2/discid/x", true},
        {nullptr, "http://musicbrainz.org.example.invalid/ws/2/discid/x", false},
        {nullptr, "http://notmusicbrainz.org/ws/2/discid/x", false},
        {nullptr, "http://musicbrainz.org@example.invalid/ws/2/discid/x", false},
        {nullptr, "http://example.invalid/?musicbrainz.org", false},
        {nullptr, "http://127.0.0.1:8123/ws/2/discid/x", false},
        {"127.0.0.1:8123", "http://127.0.0.1:8123/ws/2/discid/x", true},
        {"127.0.0.1:8123", "http://127.0.0.1:8124/ws/2/discid/x", false},
        {"127.0.0.1:8123", "http://127.0.0.1/ws/2/discid/x", false},
        {"127.0.0.1:8123", "http://localhost:8123/ws/2/discid/x", false},
        {"127.0.0.1:8123", "http://musicbrainz.org/ws/2/discid/x", false},
        {"", "http://musicbrainz.org/ws/2/discid/x", true, "https://musicbrainz.org/ws/2/discid/x"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.service ? c.service : "(unset)") + " " + c.url);
        mb_testing::scoped_environment service_host("TESSELLON_MUSICBRAINZ_HOST", c.service);
        const http_request_policy policy = policy_for_url(c.url);
        EXPECT_EQ(gets_service_rules(policy), c.service_rules);
        EXPECT_EQ(policy.url, c.sent_to ? c.sent_to : c.url);
    }
}

TEST(musicbrainz_etiquette, one_host_written_two_ways_shares_one_request_budget) {
    mb_testing::scoped_environment service_host("TESSELLON_MUSICBRAINZ_HOST", nullptr);
    const http_request_policy a = policy_for_url("http://MusicBrainz.org/ws/2/discid/a");
    const http_request_policy b = policy_for_url("http://musicbrainz.org:80/ws/2/discid/b");
    const http_request_policy secure = policy_for_url("https://musicbrainz.org/ws/2/discid/c");
    EXPECT_FALSE(a.rate_key.empty());
    EXPECT_EQ(a.rate_key, b.rate_key);
    EXPECT_EQ(a.rate_key, secure.rate_key) << "the service limits a client, whichever scheme it uses";
}

TEST(musicbrainz_etiquette, busy_answers_are_waited_for_longer_each_time_and_retry_after_is_capped) {
    mb_testing::scoped_environment service_host("TESSELLON_MUSICBRAINZ_HOST", nullptr);
    const http_request_policy policy = policy_for_url("http://musicbrainz.org/ws/2/discid/x");
    using std::chrono::seconds;
    struct delay_case {
        int retry;
        long retry_after;
        std::chrono::milliseconds expected;
    };
    const delay_case cases[] = {
        {0, 0, seconds(1)}, {1, 0, seconds(2)}, {2, 0, seconds(4)},
        {0, 5, seconds(5)}, {2, 1, seconds(1)}, {0, 3600, policy.max_retry_after},
    };
    EXPECT_EQ(policy.retries_on_503, 3);
    EXPECT_LE(policy.max_retry_after, std::chrono::seconds(60));
    for (const auto& c : cases)
        EXPECT_EQ(delay_before_retry(policy, c.retry, c.retry_after), c.expected)
            << "retry " << c.retry << ", Retry-After " << c.retry_after;
}

// Another host is told only the program's name, and its busy answer is the answer at once.
TEST_F(musicbrainz_service, the_service_is_told_who_asks_and_other_hosts_are_not) {
    local_server other(server_script, {"--fault", "http-status:503"});

    EXPECT_EQ(fetch(lookup_url()), mb_testing::server_answer(dark_disc));
    const std::string message = failure_of<tunehall_io::exception_io>([&] { fetch(other.base_url() + lookup_target(dark_disc)); });

    EXPECT_TRUE(contains(message, "503")) << message;
    EXPECT_EQ(other.requests().size(), 1u);
    const names service_saw = server.last_request_headers();
    const names other_saw = other.last_request_headers();
    EXPECT_TRUE(has_line(service_saw, service_agent)) << testing::PrintToString(service_saw);
    EXPECT_TRUE(has_line(other_saw, plain_agent)) << testing::PrintToString(other_saw);
}

TEST_F(musicbrainz_service, a_busy_service_is_asked_again_until_it_answers) {
    server.set_fault("busy:2");

    EXPECT_EQ(fetch(lookup_url()), mb_testing::server_answer(dark_disc));

    EXPECT_EQ(server.requests(), names(3, lookup_target(dark_disc)));
    // The server's clock: the second wait is longer than the first.
    const std::vector<double> gaps = gaps_between(server.arrival_times());
    ASSERT_EQ(gaps.size(), 2u);
    EXPECT_GE(gaps[0], 1.0);
    EXPECT_GE(gaps[1], 2.0);
}

TEST_F(musicbrainz_service, a_service_busy_four_times_fails_after_four_requests_naming_the_503) {
    server.set_fault("http-status:503,retry-after:1");

    const std::string message = failure_of<tunehall_io::exception_io>([&] { fetch(lookup_url()); });

    EXPECT_TRUE(contains(message, lookup_url())) << message;
    EXPECT_TRUE(contains(message, "503")) << message;
    EXPECT_EQ(server.requests().size(), 4u);
}

TEST_F(musicbrainz_service, the_services_own_retry_after_is_waited_for) {
    // Longer than the first back-off of one second.
    server.set_fault("busy:1,retry-after:3");

    EXPECT_EQ(fetch(lookup_url()), mb_testing::server_answer(dark_disc));

    const std::vector<double> gaps = gaps_between(server.arrival_times());
    ASSERT_EQ(gaps.size(), 1u);
    EXPECT_GE(gaps[0], 3.0);
}

TEST_F(musicbrainz_service, two_threads_asking_at_once_reach_the_service_a_second_apart) {
    std::latch start(2);
    std::string bodies[2];
    auto ask = [&](int i, const std::string& disc_id) {
        start.arrive_and_wait();
        bodies[i] = fetch(lookup_url(disc_id));
    };
    std::thread first(ask, 0, dark_disc);
    std::thread second(ask, 1, ziggy_disc);
    first.join();
    second.join();

    EXPECT_EQ(bodies[0], mb_testing::server_answer(dark_disc));
    EXPECT_EQ(bodies[1], mb_testing::server_answer(ziggy_disc));
    const std::vector<double> gaps = gaps_between(server.arrival_times());
    ASSERT_EQ(gaps.size(), 1u);
    // The server stamps a request once it has read it, a few milliseconds after the client sent
    // it; allow for that jitter, not for a second request sent early.
    EXPECT_GE(gaps[0], 0.95);
}

TEST_F(musicbrainz_service, abort_during_the_back_off_stops_without_asking_again) {
    // A back-off that fits in the request's deadline (a longer one is not waited out at all).
    server.set_fault("http-status:503,retry-after:20");
    abort_source_impl abort;
    std::thread user([&] {
        // Once the first (busy) answer is out, the request is waiting out its back-off.
        for (int i = 0; i < 500 && server.requests().empty(); ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        abort.abort();
    });
    const auto started = std::chrono::steady_clock::now();
    EXPECT_THROW(fetch(lookup_url(), abort), tunehall_io::exception_aborted);
    const auto ended = std::chrono::steady_clock::now();
    user.join();

    EXPECT_EQ(server.requests().size(), 1u);
    // Not a speed goal: a wait that ignored the abort would only end with the 20 s back-off.
    EXPECT_LT(ended - started, std::chrono::seconds(20));
}

// Each hop is told who asks and waits its turn.
TEST_F(musicbrainz_service, a_redirect_is_followed_like_a_request_of_its_own) {
    server.set_fault("redirect");

    EXPECT_EQ(fetch(lookup_url()), mb_testing::server_answer(dark_disc));

    EXPECT_EQ(server.requests(), (names{lookup_target(dark_disc), "/moved" + lookup_target(dark_disc)}));
    const names headers = server.last_request_headers();
    EXPECT_TRUE(has_line(headers, service_agent)) << testing::PrintToString(headers);
    const std::vector<double> gaps = gaps_between(server.arrival_times());
    ASSERT_EQ(gaps.size(), 1u);
    EXPECT_GE(gaps[0], 0.95);
}

TEST_F(musicbrainz_service, a_redirect_loop_ends_with_an_error_naming_the_url) {
    server.set_fault("redirect-loop");
    const std::string url = lookup_url();
    const std::string text = failure_of<tunehall_io::exception_io>([&] { fetch(url); });
    EXPECT_TRUE(contains(text, url)) << text;
    EXPECT_TRUE(contains(text, "redirects")) << text;
}
