#pragma once
// One HTTP GET on libcurl, driven by the thread that reads it: first the final answer's
// headers (redirects followed unless the policy leaves them to the caller), then the body as
// it arrives. Nothing runs in the background: the reader waits in libcurl's poll for at most
// 100 ms at a time, so an abort is seen promptly and a slow server ties up no extra thread.
// The policy's limits (deadline, stall, answer size and lines) are checked on the way; a
// request that fails keeps failing, so a reader never mistakes it for the end of an answer.

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>

#include <curl/curl.h>
#include <tunehall/abort.h>

#include "http_request_policy.h"

class curl_transfer {
public:
    // `deadline`: when the whole request (of which this transfer may be one hop) must be done.
    curl_transfer(std::string url, const http_request_policy& policy, std::chrono::steady_clock::time_point deadline);
    ~curl_transfer();
    curl_transfer(const curl_transfer&) = delete;
    curl_transfer& operator=(const curl_transfer&) = delete;

    // Runs the request until the headers of the final answer are in. Raises
    // tunehall_io::exception_aborted, or tunehall_io::exception_io naming the URL when the
    // request fails before an answer arrives.
    void wait_for_headers(abort_source& abort);

    const std::string& url() const { return url_; }
    // "host:port" of the server.
    const std::string& origin() const { return origin_; }
    // Why the request failed, without the URL ("answer larger than 8 MiB"); empty until then.
    const std::string& failure() const { return failure_; }
    long status() const { return status_; }
    // The status line's text after the code ("Not Found"); empty when the server gave none.
    const std::string& reason() const { return reason_; }
    // The body's declared length, or -1 when the server did not declare one.
    std::int64_t content_length() const { return content_length_; }
    // Where a redirect answer sends the client (absolute), when the policy left following it to
    // the caller; empty otherwise.
    std::string redirect_target() const;
    // The answer's Retry-After in seconds (a date is converted); 0 when it has none.
    long retry_after_seconds() const;

    // Copies up to `size` bytes of the body; 0 only at its end. Bytes that arrived before a
    // failure are delivered first, then the failure is raised as by wait_for_headers.
    std::size_t read(void* buffer, std::size_t size, abort_source& abort);

private:
    template <typename Ready>
    void run_until(Ready ready, abort_source& abort);
    void perform();
    void end_of_header_block();
    void check_limits();
    std::string too_large() const;
    [[noreturn]] void raise_failure();
    [[noreturn]] void fail(std::string reason, bool bad_data = false);

    static std::size_t on_header(char* data, std::size_t size, std::size_t count, void* self);
    static std::size_t on_body(char* data, std::size_t size, std::size_t count, void* self);
    static int on_progress(void* self, curl_off_t, curl_off_t, curl_off_t, curl_off_t);

    std::string url_;
    std::string origin_;
    bool follows_redirects_;
    http_request_policy limits_;
    std::chrono::steady_clock::time_point deadline_;
    std::chrono::steady_clock::time_point last_byte_;
    std::uint64_t body_bytes_ = 0;
    std::size_t body_lines_ = 0;
    // A limit the answer broke inside a libcurl callback, raised once control is back here.
    std::string broken_limit_;
    std::string failure_;
    CURLM* multi_ = nullptr;
    CURL* easy_ = nullptr;
    char error_[CURL_ERROR_SIZE] = {};
    // Set while the reader drives the transfer, so that libcurl's progress callback can stop it.
    abort_source* abort_ = nullptr;

    // The answer being received (reset by each header block until the final one).
    long status_ = 0;
    std::string reason_;
    bool location_ = false;
    bool headers_done_ = false;
    std::int64_t content_length_ = -1;

    bool done_ = false;
    CURLcode result_ = CURLE_OK;

    // Body bytes not yet read. Bounded: when it is full, libcurl is paused until it drains.
    std::string buffer_;
    std::size_t buffer_pos_ = 0;
    bool paused_ = false;
};
