#pragma once
// The test host's progress display: a small window with the task's title, a bar, the item line
// and Cancel. It runs on a thread of its own, so that it stays drawn and Cancel works while the
// main thread waits for a modal task.

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

#include <hostkit/threaded_process_worker.h>

namespace winhost {

class progress_window : public hostkit::progress_display {
public:
    // `cancel` runs on the window's thread when the user presses Cancel; `cancelled_task_ended`
    // runs when the task it cancelled has ended (the host clears its abort there).
    progress_window(std::function<void()> cancel, std::function<void()> cancelled_task_ended);
    ~progress_window() override;

    void begin(const std::string& title, std::uint32_t flags) override;
    void progress(std::uint32_t value) override;
    void item(const std::string& text) override;
    void end(bool aborted) override;

    // The open window (null when no task runs).
    HWND window() const { return window_.load(); }

    static constexpr const wchar_t* class_name = L"tunehall:progress";
    static constexpr int cancel_id = 2, bar_id = 100, item_id = 101;

private:
    void run(std::wstring title, std::uint32_t flags);
    void close();
    static LRESULT CALLBACK window_proc(HWND window, UINT message, WPARAM wp, LPARAM lp);

    std::function<void()> cancel_, cancelled_task_ended_;
    std::atomic<bool> cancelled_{false};
    std::mutex lock_;
    int depth_ = 0;  // tasks running; the window shows while any does
    std::thread thread_;
    std::atomic<HWND> window_{nullptr};
};

} // namespace winhost
