#include "winhttp_filesystem.h"

#include <windows.h>
#include <winhttp.h>

#include <atomic>
#include <condition_variable>
#include <cstring>
#include <mutex>
#include <thread>
#include <vector>

namespace {

constexpr const wchar_t* user_agent = L"Tessellon/0.9";
constexpr int connect_timeout_ms = 10000;
constexpr int receive_timeout_ms = 60000;

std::wstring widen(const std::string& s) {
    int n = MultiByteToWideChar(CP_UTF8, 0, s.c_str(), -1, nullptr, 0);
    std::wstring w(static_cast<std::size_t>(n > 0 ? n - 1 : 0), L'\0');
    if (n > 1) MultiByteToWideChar(CP_UTF8, 0, s.c_str(), -1, w.data(), n);
    return w;
}

std::string error_text(DWORD code) {
    return "WinHTTP error " + std::to_string(code);
}

// Owns the three WinHTTP handles of one request. A watcher thread closes them when the user
// aborts: closing is the one way to end a blocking WinHTTP call from outside.
class request_handles {
public:
    HINTERNET session = nullptr, connection = nullptr, request = nullptr;

    void watch(abort_source& abort) {
        watcher_ = std::thread([this, &abort] {
            std::unique_lock lock(lock_);
            while (!done_) {
                if (abort.is_aborting()) {
                    aborted_ = true;
                    close_locked();
                    return;
                }
                wake_.wait_for(lock, std::chrono::milliseconds(50));
            }
        });
    }
    bool aborted() const { return aborted_.load(); }
    ~request_handles() {
        {
            std::lock_guard lock(lock_);
            done_ = true;
        }
        wake_.notify_all();
        if (watcher_.joinable()) watcher_.join();
        std::lock_guard lock(lock_);
        close_locked();
    }

private:
    void close_locked() {
        for (HINTERNET* h : {&request, &connection, &session})
            if (*h) {
                WinHttpCloseHandle(*h);
                *h = nullptr;
            }
    }
    std::mutex lock_;
    std::condition_variable wake_;
    bool done_ = false;
    std::atomic<bool> aborted_{false};
    std::thread watcher_;
};

class http_file : public file {
public:
    http_file(std::string url, abort_source& abort) : url_(std::move(url)), abort_(abort) {}

    void start() {
        std::wstring wurl = widen(url_);
        URL_COMPONENTS parts{};
        parts.dwStructSize = sizeof parts;
        parts.dwHostNameLength = parts.dwUrlPathLength = parts.dwExtraInfoLength = static_cast<DWORD>(-1);
        if (!WinHttpCrackUrl(wurl.c_str(), 0, 0, &parts)) throw tunehall_io::exception_io("Invalid address: " + url_);
        std::wstring host(parts.lpszHostName, parts.dwHostNameLength);
        std::wstring path(parts.lpszUrlPath, parts.dwUrlPathLength);
        path.append(parts.lpszExtraInfo, parts.dwExtraInfoLength);

        h_.session = WinHttpOpen(user_agent, WINHTTP_ACCESS_TYPE_DEFAULT_PROXY, WINHTTP_NO_PROXY_NAME,
                                 WINHTTP_NO_PROXY_BYPASS, 0);
        if (!h_.session) fail("open");
        WinHttpSetTimeouts(h_.session, connect_timeout_ms, connect_timeout_ms, receive_timeout_ms, receive_timeout_ms);
        h_.connection = WinHttpConnect(h_.session, host.c_str(), parts.nPort, 0);
        if (!h_.connection) fail("connect");
        DWORD flags = parts.nScheme == INTERNET_SCHEME_HTTPS ? WINHTTP_FLAG_SECURE : 0;
        h_.request = WinHttpOpenRequest(h_.connection, L"GET", path.c_str(), nullptr, WINHTTP_NO_REFERER,
                                        WINHTTP_DEFAULT_ACCEPT_TYPES, flags);
        if (!h_.request) fail("request");
        h_.watch(abort_);
        if (!WinHttpSendRequest(h_.request, WINHTTP_NO_ADDITIONAL_HEADERS, 0, WINHTTP_NO_REQUEST_DATA, 0, 0, 0) ||
            !WinHttpReceiveResponse(h_.request, nullptr))
            fail("send");
        DWORD status = 0, size = sizeof status;
        WinHttpQueryHeaders(h_.request, WINHTTP_QUERY_STATUS_CODE | WINHTTP_QUERY_FLAG_NUMBER, WINHTTP_HEADER_NAME_BY_INDEX,
                            &status, &size, WINHTTP_NO_HEADER_INDEX);
        if (status == 404) throw tunehall_io::exception_io_not_found("HTTP status 404 from " + url_);
        if (status >= 400) throw tunehall_io::exception_io("HTTP status " + std::to_string(status) + " from " + url_);
    }

    std::size_t read(void* buffer, std::size_t size, abort_source& abort) override {
        auto* out = static_cast<unsigned char*>(buffer);
        std::size_t given = 0;
        while (given < size) {
            if (pos_ == buffer_.size()) {
                abort.check();
                if (at_end_ || !fill()) break;
            }
            std::size_t n = std::min(size - given, buffer_.size() - pos_);
            std::memcpy(out + given, buffer_.data() + pos_, n);
            pos_ += n;
            given += n;
        }
        return given;
    }
    void write(const void*, std::size_t, abort_source&) override {
        throw tunehall_io::exception_io_denied("Cannot write to " + url_);
    }
    std::uint64_t size(abort_source&) override { return UINT64_MAX; }

private:
    // Reads the next piece of the body; false at its end.
    bool fill() {
        buffer_.resize(16384);
        DWORD got = 0;
        if (!WinHttpReadData(h_.request, buffer_.data(), static_cast<DWORD>(buffer_.size()), &got)) fail("read");
        buffer_.resize(got);
        pos_ = 0;
        if (got == 0) at_end_ = true;
        return got > 0;
    }

    [[noreturn]] void fail(const char* step) {
        DWORD code = GetLastError();
        if (h_.aborted() || abort_.is_aborting()) throw tunehall_io::exception_aborted();
        throw tunehall_io::exception_io(std::string("Cannot ") + step + " " + url_ + ": " + error_text(code));
    }

    std::string url_;
    abort_source& abort_;
    request_handles h_;
    std::vector<unsigned char> buffer_;
    std::size_t pos_ = 0;
    bool at_end_ = false;
};

class winhttp_filesystem : public filesystem {
public:
    bool is_our_path(const char* path) override {
        return std::strncmp(path, "http://", 7) == 0 || std::strncmp(path, "https://", 8) == 0;
    }
    file_ptr open(const char* path, open_mode mode, abort_source& abort) override {
        if (mode != open_mode::read) throw tunehall_io::exception_io_denied(std::string("Cannot write to ") + path);
        abort.check();
        auto f = make_service<http_file>(path, abort);
        f->start();
        return f;
    }
    void create_directory(const char* path, abort_source&) override {
        throw tunehall_io::exception_io_no_handler_for_path(std::string("Cannot create a folder at ") + path);
    }
};

} // namespace

service_ref<filesystem> make_winhttp_filesystem() { return make_service<winhttp_filesystem>(); }
