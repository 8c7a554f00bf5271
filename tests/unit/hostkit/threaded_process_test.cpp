// Background tasks: where each step runs, progress, abort, and the two ways of waiting.

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include <tunehall/threaded_process.h>

#include "support/test_host.h"

using testing_support::test_host;

namespace {

struct recorded {
    std::thread::id init_thread, run_thread, done_thread;
    bool done = false;
    bool aborted = false;
    std::vector<std::uint32_t> progress;
};

class recording_task : public threaded_process_task {
public:
    recording_task(recorded& r, std::function<void(abort_source&)> body) : r_(r), body_(std::move(body)) {}
    void on_init(HWND) override { r_.init_thread = std::this_thread::get_id(); }
    void run(threaded_process_status& status, abort_source& abort) override {
        r_.run_thread = std::this_thread::get_id();
        for (std::uint32_t p : {0u, 2500u, 9999u}) status.set_progress(p);
        body_(abort);
    }
    void on_done(HWND, bool aborted) override {
        r_.done_thread = std::this_thread::get_id();
        r_.aborted = aborted;
        r_.done = true;
    }

private:
    recorded& r_;
    std::function<void(abort_source&)> body_;
};

class progress_log : public hostkit::progress_display {
public:
    void begin(const std::string& title, std::uint32_t) override { titles.push_back(title); }
    void progress(std::uint32_t v) override { values.push_back(v); }
    void item(const std::string&) override {}
    void end(bool a) override { ended_aborted = a; }
    std::vector<std::string> titles;
    std::vector<std::uint32_t> values;
    bool ended_aborted = false;
};

} // namespace

TEST(threaded_process, modal_run_works_on_a_worker_and_finishes_on_the_main_thread) {
    progress_log display;
    testing_support::temp_folder profile;
    hostkit::host h({profile.path(), false, false, &display});
    recorded r;
    auto tp = host_service<threaded_process>();
    bool ran = tp->run_modal(make_service<recording_task>(r, [](abort_source&) {}), threaded_process::flag_show_abort,
                             nullptr, "Working", threaded_process::title_nul_terminated);
    EXPECT_TRUE(ran);
    EXPECT_TRUE(r.done);
    EXPECT_FALSE(r.aborted);
    EXPECT_EQ(r.init_thread, std::this_thread::get_id());
    EXPECT_EQ(r.done_thread, std::this_thread::get_id());
    EXPECT_NE(r.run_thread, std::this_thread::get_id());
    EXPECT_EQ(display.titles, std::vector<std::string>{"Working"});
    EXPECT_EQ(display.values, (std::vector<std::uint32_t>{0, 2500, 5000}));  // clamped to the scale
}

TEST(threaded_process, aborting_a_running_task_reports_it_aborted) {
    test_host host;
    recorded r;
    std::atomic<bool> started{false};
    auto tp = host_service<threaded_process>();
    tp->run_modeless(make_service<recording_task>(r,
                                                  [&](abort_source& abort) {
                                                      started = true;
                                                      for (;;) {
                                                          abort.check();
                                                          std::this_thread::sleep_for(std::chrono::milliseconds(1));
                                                      }
                                                  }),
                     0, nullptr, "Endless", threaded_process::title_nul_terminated);
    EXPECT_FALSE(r.done);  // modeless: the call returned while the task runs
    host.run_until([&] { return started.load(); });
    host.host().tasks().abort_all();
    host.run_until([&] { return r.done; });
    host.host().tasks().clear_abort();
    EXPECT_TRUE(r.aborted);
    EXPECT_EQ(r.done_thread, std::this_thread::get_id());
}

TEST(threaded_process, a_failure_escaping_a_task_is_logged_not_lost) {
    test_host host;
    recorded r;
    host_service<threaded_process>()->run_modal(
        make_service<recording_task>(r, [](abort_source&) { throw tunehall_io::exception_io("disk on fire"); }), 0,
        nullptr, "Failing", threaded_process::title_nul_terminated);
    EXPECT_TRUE(r.done);
    EXPECT_FALSE(r.aborted);
    auto lines = host.console_lines();
    ASSERT_FALSE(lines.empty());
    EXPECT_NE(lines.back().find("disk on fire"), std::string::npos);
}
