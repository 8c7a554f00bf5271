#include "winhttp_filesystem.h"

#include <windows.h>
#include <winhttp.h>

#include <atomic>
#include <cstring>
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

// What one request shares with WinHTTP's callback thread. WinHTTP may still complete a step into
// it after the file gave up waiting (an abort), so it lives until WinHTTP reports that the
// request handle is closing.
struct request_state {
    request_state() : completed(CreateEventW(nullptr, FALSE, FALSE, nullptr)) {}
    ~request_state() {
        if (completed) CloseHandle(completed);
    }
    request_state(const request_state&) = delete;
    request_state& operator=(const request_state&) = delete;

    HANDLE completed;              // set when the pending step ends, either way
    std::atomic<DWORD> error{0};   // its WinHTTP error, 0 on success
    std::atomic<DWORD> bytes{0};   // what a read delivered into `buffer`
    std::vector<unsigned char> buffer = std::vector<unsigned char>(16384);
};

void CALLBACK on_request_status(HINTERNET, DWORD_PTR context, DWORD status, LPVOID info, DWORD length) {
    auto* state = reinterpret_cast<request_state*>(context);
    if (!state) return;
    switch (status) {
    case WINHTTP_CALLBACK_STATUS_SENDREQUEST_COMPLETE:
    case WINHTTP_CALLBACK_STATUS_HEADERS_AVAILABLE:
        state->error = 0;
        SetEvent(state->completed);
        break;
    case WINHTTP_CALLBACK_STATUS_READ_COMPLETE:
        state->bytes = length;
        state->error = 0;
        SetEvent(state->completed);
        break;
    case WINHTTP_CALLBACK_STATUS_REQUEST_ERROR:
        state->error = static_cast<WINHTTP_ASYNC_RESULT*>(info)->dwError;
        SetEvent(state->completed);
        break;
    case WINHTTP_CALLBACK_STATUS_HANDLE_CLOSING:
        delete state;
        break;
    default:
        break;
    }
}

// A GET over asynchronous WinHTTP: each step is started, then awaited while the caller's abort
// source is polled, so an abort ends the wait at once whatever the network does. (Closing a
// handle does not end a blocking synchronous call everywhere.) The abort source is used only
// during the call that passed it: the host may destroy the file later than the task that read
// it.
class http_file : public file {
public:
    explicit http_file(std::string url) : url_(std::move(url)) {}
    ~http_file() override {
        if (callback_owns_state_)
            WinHttpCloseHandle(request_);  // the state goes with the handle's closing
        else {
            if (request_) WinHttpCloseHandle(request_);
            delete state_;
        }
        if (connection_) WinHttpCloseHandle(connection_);
        if (session_) WinHttpCloseHandle(session_);
    }
    http_file(const http_file&) = delete;
    http_file& operator=(const http_file&) = delete;

    void start(abort_source& abort) {
        std::wstring wurl = widen(url_);
        URL_COMPONENTS parts{};
        parts.dwStructSize = sizeof parts;
        parts.dwHostNameLength = parts.dwUrlPathLength = parts.dwExtraInfoLength = static_cast<DWORD>(-1);
        if (!WinHttpCrackUrl(wurl.c_str(), 0, 0, &parts)) throw tunehall_io::exception_io("Invalid address: " + url_);
        std::wstring host(parts.lpszHostName, parts.dwHostNameLength);
        std::wstring path(parts.lpszUrlPath, parts.dwUrlPathLength);
        path.append(parts.lpszExtraInfo, parts.dwExtraInfoLength);

        session_ = WinHttpOpen(user_agent, WINHTTP_ACCESS_TYPE_DEFAULT_PROXY, WINHTTP_NO_PROXY_NAME,
                               WINHTTP_NO_PROXY_BYPASS, WINHTTP_FLAG_ASYNC);
        if (!session_) fail("open", GetLastError());
        WinHttpSetTimeouts(session_, connect_timeout_ms, connect_timeout_ms, receive_timeout_ms, receive_timeout_ms);
        connection_ = WinHttpConnect(session_, host.c_str(), parts.nPort, 0);
        if (!connection_) fail("connect", GetLastError());
        DWORD flags = parts.nScheme == INTERNET_SCHEME_HTTPS ? WINHTTP_FLAG_SECURE : 0;
        request_ = WinHttpOpenRequest(connection_, L"GET", path.c_str(), nullptr, WINHTTP_NO_REFERER,
                                      WINHTTP_DEFAULT_ACCEPT_TYPES, flags);
        if (!request_) fail("request", GetLastError());
        if (!state_->completed) fail("request", GetLastError());
        DWORD_PTR context = reinterpret_cast<DWORD_PTR>(state_);
        if (!WinHttpSetOption(request_, WINHTTP_OPTION_CONTEXT_VALUE, &context, sizeof context) ||
            WinHttpSetStatusCallback(request_, on_request_status,
                                     WINHTTP_CALLBACK_FLAG_ALL_COMPLETIONS | WINHTTP_CALLBACK_FLAG_HANDLES,
                                     0) == WINHTTP_INVALID_STATUS_CALLBACK)
            fail("request", GetLastError());
        callback_owns_state_ = true;

        if (!WinHttpSendRequest(request_, WINHTTP_NO_ADDITIONAL_HEADERS, 0, WINHTTP_NO_REQUEST_DATA, 0, 0, context))
            fail("send", GetLastError());
        await("send", abort);
        if (!WinHttpReceiveResponse(request_, nullptr)) fail("send", GetLastError());
        await("send", abort);
        DWORD status = 0, size = sizeof status;
        WinHttpQueryHeaders(request_, WINHTTP_QUERY_STATUS_CODE | WINHTTP_QUERY_FLAG_NUMBER,
                            WINHTTP_HEADER_NAME_BY_INDEX, &status, &size, WINHTTP_NO_HEADER_INDEX);
        if (status == 404) throw tunehall_io::exception_io_not_found("HTTP status 404 from " + url_);
        if (status >= 400) throw tunehall_io::exception_io("HTTP status " + std::to_string(status) + " from " + url_);
    }

    std::size_t read(void* buffer, std::size_t size, abort_source& abort) override {
        auto* out = static_cast<unsigned char*>(buffer);
        std::size_t given = 0;
        while (given < size) {
            if (pos_ == filled_) {
                abort.check();
                if (at_end_ || !fill(abort)) break;
            }
            std::size_t n = std::min(size - given, filled_ - pos_);
            std::memcpy(out + given, state_->buffer.data() + pos_, n);
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
    bool fill(abort_source& abort) {
        if (!WinHttpReadData(request_, state_->buffer.data(), static_cast<DWORD>(state_->buffer.size()), nullptr))
            fail("read", GetLastError());
        await("read", abort);
        filled_ = state_->bytes.load();
        pos_ = 0;
        if (filled_ == 0) at_end_ = true;
        return filled_ > 0;
    }

    // Waits for the step just started; an abort leaves it to finish (or fail) on its own.
    void await(const char* step, abort_source& abort) {
        while (WaitForSingleObject(state_->completed, 50) != WAIT_OBJECT_0)
            if (abort.is_aborting()) throw tunehall_io::exception_aborted();
        if (DWORD code = state_->error.load()) fail(step, code);
    }

    [[noreturn]] void fail(const char* step, DWORD code) {
        throw tunehall_io::exception_io(std::string("Cannot ") + step + " " + url_ + ": " + error_text(code));
    }

    std::string url_;
    HINTERNET session_ = nullptr, connection_ = nullptr, request_ = nullptr;
    request_state* state_ = new request_state;
    bool callback_owns_state_ = false;
    std::size_t filled_ = 0, pos_ = 0;
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
        auto f = make_service<http_file>(path);
        f->start(abort);
        return f;
    }
    void create_directory(const char* path, abort_source&) override {
        throw tunehall_io::exception_io_no_handler_for_path(std::string("Cannot create a folder at ") + path);
    }
};

} // namespace

service_ref<filesystem> make_winhttp_filesystem() { return make_service<winhttp_filesystem>(); }
