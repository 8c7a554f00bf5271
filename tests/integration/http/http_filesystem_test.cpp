// The Linux host's HTTP handler against the project's CDDB test server on 127.0.0.1.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <thread>
#include <typeinfo>

#include <gtest/gtest.h>

#include <tunehall/stream.h>

#include "http/http_filesystem.h"
#include "support/local_server.h"
#include "support/test_host.h"

using testing_support::local_server;

namespace {

const std::string cddb_server_script = "tests/servers/cddb_server.py";
const std::string cgi_path = "/~cddb/cddb.cgi";

// "/~cddb/cddb.cgi?cmd=<command>&hello=...&proto=6" for a command already in query form.
std::string cddb_target(const std::string& command) {
    return cgi_path + "?cmd=" + command + "&hello=ann+mailhost+sonatag2+0.9&proto=6";
}

// Read one byte at a time, as the component reads an answer.
std::string read_bytewise(file& f, abort_source& abort) {
    std::string body;
    char c;
    while (f.read(&c, 1, abort) == 1) body += c;
    return body;
}

// The whole body at `url`, through the host's HTTP handler.
std::string fetch(const std::string& url) {
    abort_source_dummy abort;
    file_ptr f = make_http_filesystem()->open(url.c_str(), filesystem::open_mode::read, abort);
    return read_bytewise(*f, abort);
}

const filesystem::open_mode read_mode = filesystem::open_mode::read;

file_ptr open_url(const std::string& url, abort_source& abort) {
    return make_http_filesystem()->open(url.c_str(), read_mode, abort);
}

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

} // namespace

// Opened by URL through the host, as the component opens it.
TEST(http_filesystem, body_read_byte_by_byte_is_the_entry_the_server_sent) {
    local_server server(cddb_server_script);
    testing_support::test_host host({.attach_component = false});
    host.add_service(filesystem::class_guid, service_ptr(make_http_filesystem().get()));
    // An entry stored with CRLF line ends travels unchanged inside the answer.
    const std::string entry = testing_support::read_file(testing_support::fixture("xmcd/entries/a10b600c.crlf.xmcd"));
    ASSERT_FALSE(entry.empty());

    abort_source_dummy abort;
    file_ptr f = filesystem::g_open((server.base_url() + cddb_target("cddb+read+rock+a10b600c")).c_str(), read_mode, abort);
    const std::string body = read_bytewise(*f, abort);

    EXPECT_EQ(body, "210 rock a10b600c CD database entry follows (until terminating `.')\r\n" + entry + ".\r\n");
    EXPECT_EQ(f->size(abort), body.size());
    EXPECT_EQ(server.requests(), std::vector<std::string>{cddb_target("cddb+read+rock+a10b600c")});
}

TEST(http_filesystem, body_much_larger_than_the_stream_buffer_arrives_whole_and_in_order) {
    local_server server(cddb_server_script);
    const std::string url = server.base_url() + cddb_target("cddb+lscat");
    const std::string plain = fetch(url);
    const std::size_t status_end = plain.find("\r\n") + 2;
    ASSERT_GT(status_end, 2u);

    const std::size_t big = 3'000'000;
    server.set_fault("long-line:" + std::to_string(big));
    const std::string body = fetch(url);

    EXPECT_EQ(body.size(), plain.size() + big + 2);
    EXPECT_TRUE(body == plain.substr(0, status_end) + std::string(big, 'x') + "\r\n" + plain.substr(status_end));
}

TEST(http_filesystem, http_error_statuses_raise_io_errors_naming_the_url_and_the_status) {
    struct error_case {
        const char* fault;
        std::string target;
        int status;
        bool not_found;
    };
    const error_case cases[] = {
        {"none", "/nowhere/cddb.cgi?cmd=sites", 404, true},
        {"http-status:404", cddb_target("sites"), 404, true},
        {"http-status:500", cddb_target("sites"), 500, false},
        {"http-status:503", cddb_target("cddb+lscat"), 503, false},
        {"http-status:403", cddb_target("cddb+lscat"), 403, false},
    };
    local_server server(cddb_server_script);
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.fault) + " " + c.target);
        server.set_fault(c.fault);
        const std::string url = server.base_url() + c.target;
        abort_source_dummy abort;
        try {
            open_url(url, abort);
            ADD_FAILURE() << "no exception";
        } catch (const tunehall_io::exception_io& e) {
            const std::string text = e.what();
            EXPECT_TRUE(contains(text, url)) << text;
            EXPECT_TRUE(contains(text, std::to_string(c.status))) << text;
            EXPECT_EQ(dynamic_cast<const tunehall_io::exception_io_not_found*>(&e) != nullptr, c.not_found) << typeid(e).name();
            EXPECT_EQ(dynamic_cast<const tunehall_io::exception_io_data*>(&e), nullptr) << typeid(e).name();
        }
    }
}

TEST(http_filesystem, refused_connection_raises_io_error_with_the_url_and_the_reason) {
    // Port 9 (discard): nothing listens there on a test machine.
    const std::string url = "http://127.0.0.1:9" + cddb_target("sites");
    abort_source_dummy abort;
    try {
        open_url(url, abort);
        ADD_FAILURE() << "no exception";
    } catch (const tunehall_io::exception_io& e) {
        const std::string text = e.what();
        EXPECT_EQ(typeid(e), typeid(tunehall_io::exception_io)) << typeid(e).name();
        EXPECT_TRUE(contains(text, url)) << text;
        // libcurl's own words follow the address ("Failed to connect to ... Couldn't connect ...").
        EXPECT_TRUE(contains(text, "onnect")) << text;
    }
}

TEST(http_filesystem, redirect_is_followed_to_the_answer) {
    local_server server(cddb_server_script, {"--redirect-from", "/cgi-bin/cddb.cgi"});
    const std::string query = "?cmd=cddb+lscat&hello=ann+mailhost+sonatag2+0.9&proto=6";

    const std::string body = fetch(server.base_url() + "/cgi-bin/cddb.cgi" + query);

    EXPECT_EQ(body.substr(0, body.find("\r\n")), "210 OK, category list follows (until terminating `.')");
    EXPECT_EQ(server.requests(), (std::vector<std::string>{"/cgi-bin/cddb.cgi" + query, cgi_path + query}));
}

TEST(http_filesystem, abort_in_the_middle_of_a_slow_answer_raises_aborted) {
    // One line per second: the whole 57-track entry would take minutes.
    local_server server(cddb_server_script, {"--fault", "slow:1"});
    abort_source_impl abort;
    file_ptr f = open_url(server.base_url() + cddb_target("cddb+read+misc+2f0d8939"), abort);

    std::string got;
    char c;
    while (f->read(&c, 1, abort) == 1) {
        got += c;
        if (c == '\n') break;
    }
    ASSERT_EQ(got, "210 misc 2f0d8939 CD database entry follows (until terminating `.')\r\n");

    using clock = std::chrono::steady_clock;
    clock::time_point aborted_at;
    std::thread user([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        aborted_at = clock::now();
        abort.abort();
    });
    bool aborted = false;
    try {
        while (f->read(&c, 1, abort) == 1) got += c;
    } catch (const tunehall_io::exception_aborted&) {
        aborted = true;
    }
    const clock::time_point stopped_at = clock::now();
    user.join();

    EXPECT_TRUE(aborted);
    EXPECT_FALSE(contains(got, "\r\n.\r\n")) << "the whole answer arrived before the abort";
    if (aborted)
        std::printf("[ measured ] abort to exception: %lld ms\n",
                    static_cast<long long>(std::chrono::duration_cast<std::chrono::milliseconds>(stopped_at - aborted_at).count()));
}

TEST(http_filesystem, aborted_before_opening_sends_no_request) {
    local_server server(cddb_server_script);
    abort_source_impl abort;
    abort.abort();
    EXPECT_THROW(open_url(server.base_url() + cddb_target("sites"), abort), tunehall_io::exception_aborted);

    fetch(server.base_url() + cddb_target("cddb+lscat"));
    EXPECT_EQ(server.requests(), std::vector<std::string>{cddb_target("cddb+lscat")});
}

// A connection that closes before the declared length is a failure, not a short answer: the
// bytes before the cut are delivered, then reading raises a general i/o error naming the URL.
TEST(http_filesystem, connection_cut_mid_line_delivers_the_bytes_before_the_cut_then_fails) {
    local_server server(cddb_server_script);
    const std::string url = server.base_url() + cddb_target("cddb+read+rock+8608460b");
    const std::string whole = fetch(url);
    server.set_fault("cut");

    abort_source_dummy abort;
    file_ptr f = open_url(url, abort);
    std::string got;
    std::string error;
    try {
        char c;
        while (f->read(&c, 1, abort) == 1) got += c;
    } catch (const tunehall_io::exception_io& e) {
        error = e.what();
        EXPECT_EQ(typeid(e), typeid(tunehall_io::exception_io)) << typeid(e).name();
    }
    const std::size_t first_line = whole.find("\r\n") + 2;

    EXPECT_TRUE(contains(error, url)) << "error: " << error;
    EXPECT_GT(got.size(), first_line);
    EXPECT_LT(got.size(), whole.size());
    EXPECT_EQ(got, whole.substr(0, got.size()));
    EXPECT_NE(got.back(), '\n') << "cut at a line end";
}

TEST(http_filesystem, request_reaches_the_server_exactly_as_built) {
    const std::string targets[] = {
        cddb_target("cddb+query+1502D003+3+150+13650+31665+722"),
        // bytes of 0x80 and above in the widened form, a control character, "+" and "@"
        cddb_target("cddb+read+rock%ffffffe9+a10b600c"),
        cddb_target("cddb%09lscat"),
        cgi_path + "?cmd=sites&hello=ann+mail@host+sonatag2+0.9&proto=6",
    };
    local_server server(cddb_server_script);
    for (const auto& target : targets) {
        SCOPED_TRACE(target);
        fetch(server.base_url() + target);
        const auto requests = server.requests();
        ASSERT_FALSE(requests.empty());
        EXPECT_EQ(requests.back(), target);
    }
    const auto headers = server.last_request_headers();
    EXPECT_NE(std::find(headers.begin(), headers.end(), "User-Agent: Tessellon/0.9"), headers.end());
}

TEST(http_filesystem, empty_answer_is_an_empty_stream) {
    local_server server(cddb_server_script, {"--fault", "empty-body"});
    abort_source_dummy abort;
    file_ptr f = open_url(server.base_url() + cddb_target("sites"), abort);
    char c;
    EXPECT_EQ(f->read(&c, 1, abort), 0u);
    EXPECT_EQ(f->size(abort), 0u);
}

TEST(http_filesystem, serves_http_and_https_addresses_only) {
    const std::pair<const char*, bool> paths[] = {
        {"http://127.0.0.1/", true},         {"HTTP://example.invalid/x", true},
        {"https://example.invalid/", true},  {"Https://example.invalid/", true},
        {"file:///tmp/x", false},            {"/tmp/http://x", false},
        {"httpx://example.invalid/", false}, {"http:/example.invalid", false},
        {"ftp://example.invalid/", false},   {"", false},
    };
    auto fs = make_http_filesystem();
    for (const auto& [path, ours] : paths) EXPECT_EQ(fs->is_our_path(path), ours) << path;
}

TEST(http_filesystem, writing_and_folders_are_refused) {
    local_server server(cddb_server_script);
    const std::string url = server.base_url() + cddb_target("sites");
    auto fs = make_http_filesystem();
    abort_source_dummy abort;

    EXPECT_THROW(fs->open(url.c_str(), filesystem::open_mode::write_new, abort), tunehall_io::exception_io_denied);
    EXPECT_THROW(fs->create_directory(url.c_str(), abort), tunehall_io::exception_io_no_handler_for_path);
    file_ptr f = fs->open(url.c_str(), read_mode, abort);
    EXPECT_THROW(f->write("x", 1, abort), tunehall_io::exception_io_denied);
    EXPECT_TRUE(server.requests().size() == 1) << "only the read request reaches the server";
}
