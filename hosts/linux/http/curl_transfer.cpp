#include "curl_transfer.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <string_view>

#include <tunehall/exceptions.h>

namespace {

// The longest the reader sleeps in libcurl's poll before it looks at the abort source again.
constexpr int wake_ms = 100;
// Body bytes held before libcurl is paused; a few of libcurl's own write chunks.
constexpr std::size_t max_buffered = 256 * 1024;

void ensure_curl_ready() {
    // libcurl's global set-up must happen once before any handle; with the thread-safe build
    // a function-local static is enough.
    static const CURLcode init = curl_global_init(CURL_GLOBAL_DEFAULT);
    if (init != CURLE_OK)
        throw tunehall_io::exception_io(std::string("HTTP is not available: ") + curl_easy_strerror(init));
}

bool starts_with_nocase(std::string_view text, std::string_view prefix) {
    return text.size() >= prefix.size() &&
           std::equal(prefix.begin(), prefix.end(), text.begin(),
                      [](char a, char b) { return std::tolower(static_cast<unsigned char>(a)) == b; });
}

std::string_view trim(std::string_view text) {
    while (!text.empty() && std::strchr(" \t\r\n", text.back())) text.remove_suffix(1);
    while (!text.empty() && std::strchr(" \t", text.front())) text.remove_prefix(1);
    return text;
}

std::string seconds_text(std::chrono::milliseconds span) {
    const auto ms = span.count();
    return ms % 1000 == 0 ? std::to_string(ms / 1000) + " s" : std::to_string(ms) + " ms";
}

template <typename T>
void set(CURL* easy, CURLoption option, T value) {
    if (CURLcode rc = curl_easy_setopt(easy, option, value); rc != CURLE_OK)
        throw tunehall_io::exception_io(std::string("HTTP set-up failed: ") + curl_easy_strerror(rc));
}

} // namespace

curl_transfer::curl_transfer(std::string url, const http_request_policy& policy,
                             std::chrono::steady_clock::time_point deadline)
    : url_(std::move(url)), origin_(origin_of(url_)), follows_redirects_(policy.follow_redirects), limits_(policy),
      deadline_(deadline), last_byte_(std::chrono::steady_clock::now()) {
    ensure_curl_ready();
    multi_ = curl_multi_init();
    easy_ = curl_easy_init();
    if (!multi_ || !easy_) {
        if (easy_) curl_easy_cleanup(easy_);
        if (multi_) curl_multi_cleanup(multi_);
        throw tunehall_io::exception_io("HTTP set-up failed: out of memory");
    }
    try {
        set(easy_, CURLOPT_URL, url_.c_str());
        set(easy_, CURLOPT_PROTOCOLS_STR, "http,https");
        set(easy_, CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
        set(easy_, CURLOPT_FOLLOWLOCATION, follows_redirects_ ? 1L : 0L);
        set(easy_, CURLOPT_MAXREDIRS, policy.max_redirects);
        set(easy_, CURLOPT_USERAGENT, policy.user_agent.c_str());
        set(easy_, CURLOPT_CONNECTTIMEOUT, policy.connect_timeout_seconds);
        set(easy_, CURLOPT_NOPROXY, policy.no_proxy.c_str());
        set(easy_, CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
        // Worker threads: libcurl must not use signals for its time-outs.
        set(easy_, CURLOPT_NOSIGNAL, 1L);
        set(easy_, CURLOPT_ERRORBUFFER, error_);
        set(easy_, CURLOPT_HEADERFUNCTION, &curl_transfer::on_header);
        set(easy_, CURLOPT_HEADERDATA, this);
        set(easy_, CURLOPT_WRITEFUNCTION, &curl_transfer::on_body);
        set(easy_, CURLOPT_WRITEDATA, this);
        set(easy_, CURLOPT_XFERINFOFUNCTION, &curl_transfer::on_progress);
        set(easy_, CURLOPT_XFERINFODATA, this);
        set(easy_, CURLOPT_NOPROGRESS, 0L);
        if (curl_multi_add_handle(multi_, easy_) != CURLM_OK)
            throw tunehall_io::exception_io("HTTP set-up failed: " + url_);
    } catch (...) {
        curl_easy_cleanup(easy_);
        curl_multi_cleanup(multi_);
        throw;
    }
}

curl_transfer::~curl_transfer() {
    curl_multi_remove_handle(multi_, easy_);
    curl_easy_cleanup(easy_);
    curl_multi_cleanup(multi_);
}

void curl_transfer::wait_for_headers(abort_source& abort) {
    run_until([this] { return headers_done_; }, abort);
    if (!headers_done_) raise_failure();
}

std::size_t curl_transfer::read(void* buffer, std::size_t size, abort_source& abort) {
    abort.check();
    if (!failure_.empty()) fail(failure_, !broken_limit_.empty());
    if (size == 0) return 0;
    if (buffer_pos_ == buffer_.size()) {
        buffer_.clear();
        buffer_pos_ = 0;
        if (paused_) {
            paused_ = false;
            // May hand over the data libcurl kept back, through on_body, right here.
            curl_easy_pause(easy_, CURLPAUSE_CONT);
        }
        run_until([this] { return buffer_pos_ < buffer_.size(); }, abort);
    }
    const std::size_t n = std::min(size, buffer_.size() - buffer_pos_);
    if (n == 0) {
        if (result_ != CURLE_OK) raise_failure();
        return 0;
    }
    std::memcpy(buffer, buffer_.data() + buffer_pos_, n);
    buffer_pos_ += n;
    return n;
}

template <typename Ready>
void curl_transfer::run_until(Ready ready, abort_source& abort) {
    struct watch {
        curl_transfer& t;
        ~watch() { t.abort_ = nullptr; }
    } clear_on_exit{*this};
    abort_ = &abort;
    for (;;) {
        abort.check();
        perform();
        check_limits();
        if (ready() || done_) return;
        CURLMcode rc = curl_multi_poll(multi_, nullptr, 0, wake_ms, nullptr);
        if (rc != CURLM_OK)
            throw tunehall_io::exception_io("HTTP request to " + url_ + " failed: " + curl_multi_strerror(rc));
    }
}

void curl_transfer::check_limits() {
    // An answer over a size or line limit is bad data, like any other answer nobody can use.
    if (!broken_limit_.empty()) fail(broken_limit_, true);
    // An answer already in whole is not late, however long its reader takes over it.
    if (done_) return;
    const auto now = std::chrono::steady_clock::now();
    if (now >= deadline_) fail("no complete answer within " + seconds_text(limits_.deadline));
    if (now - last_byte_ >= limits_.stall) fail("nothing received for " + seconds_text(limits_.stall));
}

void curl_transfer::perform() {
    if (done_) return;
    int running = 0;
    CURLMcode rc = curl_multi_perform(multi_, &running);
    if (rc != CURLM_OK)
        throw tunehall_io::exception_io("HTTP request to " + url_ + " failed: " + curl_multi_strerror(rc));
    int left = 0;
    while (CURLMsg* msg = curl_multi_info_read(multi_, &left)) {
        if (msg->msg == CURLMSG_DONE && msg->easy_handle == easy_) {
            done_ = true;
            result_ = msg->data.result;
            // A finished answer without a header block (none seen) still has a status.
            if (result_ == CURLE_OK && !headers_done_) end_of_header_block();
        }
    }
}

void curl_transfer::end_of_header_block() {
    long code = 0;
    curl_easy_getinfo(easy_, CURLINFO_RESPONSE_CODE, &code);
    // Interim answers (1xx) and redirects that libcurl is about to follow are not the answer.
    if (code < 200 || (follows_redirects_ && code >= 300 && code < 400 && location_)) return;
    status_ = code;
    curl_off_t length = -1;
    if (curl_easy_getinfo(easy_, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &length) == CURLE_OK) content_length_ = length;
    // A declared size over the cap is refused before a byte of it is fetched.
    if (content_length_ > 0 && static_cast<std::uint64_t>(content_length_) > limits_.max_answer_bytes)
        broken_limit_ = too_large();
    headers_done_ = true;
}

std::string curl_transfer::redirect_target() const {
    if (follows_redirects_ || status_ < 300 || status_ >= 400) return {};
    char* target = nullptr;
    if (curl_easy_getinfo(easy_, CURLINFO_REDIRECT_URL, &target) != CURLE_OK || !target) return {};
    return target;
}

long curl_transfer::retry_after_seconds() const {
    curl_off_t seconds = 0;
    if (curl_easy_getinfo(easy_, CURLINFO_RETRY_AFTER, &seconds) != CURLE_OK || seconds < 0) return 0;
    return static_cast<long>(seconds);
}

void curl_transfer::raise_failure() {
    if (result_ == CURLE_ABORTED_BY_CALLBACK) throw tunehall_io::exception_aborted();
    fail(error_[0] ? std::string(error_) : std::string(curl_easy_strerror(result_)));
}

void curl_transfer::fail(std::string reason, bool bad_data) {
    failure_ = std::move(reason);
    const std::string text = "HTTP request to " + url_ + " failed: " + failure_;
    if (bad_data) throw tunehall_io::exception_io_data(text);
    throw tunehall_io::exception_io(text);
}

std::string curl_transfer::too_large() const {
    return "answer larger than " + std::to_string(limits_.max_answer_bytes / (1024 * 1024)) + " MiB";
}

std::size_t curl_transfer::on_header(char* data, std::size_t size, std::size_t count, void* self_ptr) {
    auto& self = *static_cast<curl_transfer*>(self_ptr);
    self.last_byte_ = std::chrono::steady_clock::now();
    const std::string_view line = trim(std::string_view(data, size * count));
    if (starts_with_nocase(line, "http/")) {
        // "HTTP/1.1 404 Not Found": a new answer starts (the first, or one after a redirect).
        const std::size_t space = line.find(' ');
        const std::size_t reason = space == std::string_view::npos ? space : line.find(' ', space + 1);
        self.reason_ = reason == std::string_view::npos ? std::string() : std::string(trim(line.substr(reason + 1)));
        self.location_ = false;
    } else if (line.empty()) {
        self.end_of_header_block();
    } else if (starts_with_nocase(line, "location:") && !trim(line.substr(9)).empty()) {
        self.location_ = true;
    }
    return size * count;
}

std::size_t curl_transfer::on_body(char* data, std::size_t size, std::size_t count, void* self_ptr) {
    auto& self = *static_cast<curl_transfer*>(self_ptr);
    const std::size_t n = size * count;
    const std::size_t unread = self.buffer_.size() - self.buffer_pos_;
    if (unread > 0 && unread + n > max_buffered) {
        self.paused_ = true;
        return CURL_WRITEFUNC_PAUSE;
    }
    self.last_byte_ = std::chrono::steady_clock::now();
    if (!self.headers_done_) self.end_of_header_block();
    // Returning less than was handed over makes libcurl end the transfer.
    self.body_bytes_ += n;
    if (self.body_bytes_ > self.limits_.max_answer_bytes) self.broken_limit_ = self.too_large();
    if (self.limits_.max_answer_lines > 0) {
        self.body_lines_ += static_cast<std::size_t>(std::count(data, data + n, '\n'));
        if (self.body_lines_ > self.limits_.max_answer_lines)
            self.broken_limit_ = "answer longer than " + std::to_string(self.limits_.max_answer_lines) + " lines";
    }
    if (!self.broken_limit_.empty()) return 0;
    self.buffer_.append(data, n);
    return n;
}

int curl_transfer::on_progress(void* self_ptr, curl_off_t, curl_off_t, curl_off_t, curl_off_t) {
    auto& self = *static_cast<curl_transfer*>(self_ptr);
    // Non-zero makes libcurl stop the transfer with CURLE_ABORTED_BY_CALLBACK.
    return self.abort_ && self.abort_->is_aborting() ? 1 : 0;
}
