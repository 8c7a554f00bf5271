// WinHTTP as the Windows host's filesystem::g_open for http URLs, against the project's local
// CDDB server (scripts/test starts it and names its port in TESSELLON_CDDB_PORT).

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <thread>

#include "winhttp_filesystem.h"

namespace {

std::string server_url(const std::string& query) {
    const char* port = std::getenv("TESSELLON_CDDB_PORT");
    return std::string("http://127.0.0.1:") + (port ? port : "0") + "/~cddb/cddb.cgi?" + query;
}

struct winhttp : ::testing::Test {
    service_ref<filesystem> fs = make_winhttp_filesystem();
    void SetUp() override {
        if (!std::getenv("TESSELLON_CDDB_PORT")) GTEST_SKIP() << "TESSELLON_CDDB_PORT not set (scripts/test sets it)";
    }
};

// Asks the local server to misbehave (or, with "none", to stop) for the tests that follow.
void set_server_fault(filesystem& fs, const char* fault) {
    abort_source_dummy abort;
    std::string url = server_url("x");
    url = url.substr(0, url.find("/~cddb")) + "/control?fault=" + fault;
    fs.open(url.c_str(), filesystem::open_mode::read, abort);
}

// An abort source that counts the questions it is asked and can be told it no longer exists.
class counting_abort final : public abort_source {
public:
    bool is_aborting() const override {
        ++asked;
        if (retired) ++asked_after_retiring;
        return aborting.load();
    }
    mutable std::atomic<int> asked{0}, asked_after_retiring{0};
    std::atomic<bool> retired{false}, aborting{false};
};

} // namespace

TEST_F(winhttp, reads_an_answer_byte_by_byte_and_asks_the_calls_abort_source_no_more_after) {
    counting_abort abort;
    file_ptr f = fs->open(server_url("cmd=cddb+read+misc+d50dd30f&hello=a+b+sonatag2+0.9&proto=6").c_str(),
                          filesystem::open_mode::read, abort);
    std::string body;
    for (char c; f->read(&c, 1, abort) == 1;) body += c;
    EXPECT_EQ(body.rfind("210 misc d50dd30f", 0), 0u) << body.substr(0, 80);
    EXPECT_NE(body.find("DTITLE=Various / Ska Island\r\n"), std::string::npos);
    EXPECT_EQ(body.substr(body.size() - 3), ".\r\n");
    // The host may destroy a file later than the task that read it, and the task's abort source
    // is gone by then.
    abort.retired = true;
    Sleep(300);  // time for anything still running in the background to ask
    f.reset();
    EXPECT_EQ(abort.asked_after_retiring.load(), 0);
}

TEST_F(winhttp, an_unknown_path_is_not_found_and_names_the_url) {
    abort_source_dummy abort;
    std::string url = server_url("x").replace(server_url("x").find("cddb.cgi"), 8, "nothing.cgi");
    try {
        fs->open(url.c_str(), filesystem::open_mode::read, abort);
        FAIL() << "no exception";
    } catch (const tunehall_io::exception_io_not_found& e) {
        EXPECT_NE(std::string(e.what()).find(url), std::string::npos) << e.what();
    }
}

TEST_F(winhttp, a_refused_connection_an_early_abort_and_writing_fail_with_their_exceptions) {
    abort_source_dummy ready;
    EXPECT_THROW(fs->open("http://127.0.0.1:1/", filesystem::open_mode::read, ready), tunehall_io::exception_io);
    EXPECT_THROW(fs->open(server_url("x").c_str(), filesystem::open_mode::write_new, ready), tunehall_io::exception_io_denied);
    abort_source_impl aborted;
    aborted.abort();
    EXPECT_THROW(fs->open(server_url("cmd=sites&hello=a+b+c+d&proto=6").c_str(), filesystem::open_mode::read, aborted),
                 tunehall_io::exception_aborted);
    EXPECT_TRUE(fs->is_our_path("https://example.invalid/"));
    EXPECT_FALSE(fs->is_our_path("C:\\music\\a.flac"));
}

TEST_F(winhttp, an_abort_ends_a_read_that_waits_for_a_slow_server) {
    set_server_fault(*fs, "slow:5");
    struct clear_fault {
        filesystem& fs;
        ~clear_fault() { set_server_fault(fs, "none"); }
    } clear{*fs};
    counting_abort abort;
    file_ptr f = fs->open(server_url("cmd=sites&hello=a+b+sonatag2+0.9&proto=6").c_str(),
                          filesystem::open_mode::read, abort);
    std::thread user([&] {
        Sleep(200);
        abort.aborting = true;
    });
    char buffer[64];
    // The server holds each line back for 5 s; the abort, 200 ms in, ends the wait first.
    EXPECT_THROW(f->read(buffer, sizeof buffer, abort), tunehall_io::exception_aborted);
    user.join();
    EXPECT_GT(abort.asked.load(), 0);
}
