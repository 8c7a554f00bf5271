#include "http_filesystem.h"

#include <cctype>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include <tunehall/exceptions.h>

#include "abortable_wait.h"
#include "curl_transfer.h"
#include "http_request_policy.h"
#include "request_rate_gate.h"

namespace {

bool has_scheme(std::string_view path, std::string_view scheme) {
    if (path.size() < scheme.size()) return false;
    for (std::size_t i = 0; i < scheme.size(); ++i)
        if (std::tolower(static_cast<unsigned char>(path[i])) != scheme[i]) return false;
    return true;
}

// The body of an answer, read as it arrives.
class http_file : public file {
public:
    explicit http_file(std::unique_ptr<curl_transfer> transfer) : transfer_(std::move(transfer)) {}

    std::size_t read(void* buffer, std::size_t size, abort_source& abort) override {
        return transfer_->read(buffer, size, abort);
    }
    void write(const void*, std::size_t, abort_source&) override {
        throw tunehall_io::exception_io_denied("Cannot write to " + transfer_->url());
    }
    std::uint64_t size(abort_source&) override {
        const std::int64_t length = transfer_->content_length();
        return length < 0 ? UINT64_MAX : static_cast<std::uint64_t>(length);
    }

private:
    std::unique_ptr<curl_transfer> transfer_;
};

[[noreturn]] void raise_http_status(const curl_transfer& transfer) {
    std::string text = "HTTP request to " + transfer.url() + " failed: " + std::to_string(transfer.status());
    if (!transfer.reason().empty()) text += " " + transfer.reason();
    if (transfer.status() == 404) throw tunehall_io::exception_io_not_found(text);
    throw tunehall_io::exception_io(text);
}

// One request's answer under its policy: its turn at the rate gate, and busy answers asked again.
std::unique_ptr<curl_transfer> answer_to(const std::string& url, const http_request_policy& policy, abort_source& abort) {
    for (int retry = 0;; ++retry) {
        if (policy.min_interval.count() > 0)
            request_rate_gate::process_wide().wait_turn(policy.rate_key, policy.min_interval, abort);
        auto transfer = std::make_unique<curl_transfer>(url, policy);
        transfer->wait_for_headers(abort);
        if (transfer->status() == 503 && retry < policy.retries_on_503) {
            const auto delay = delay_before_retry(policy, retry, transfer->retry_after_seconds());
            // Close the connection before waiting: a busy server should not hold it for us.
            transfer.reset();
            abortable_wait_until(std::chrono::steady_clock::now() + delay, abort);
            continue;
        }
        return transfer;
    }
}

class http_filesystem : public filesystem {
public:
    bool is_our_path(const char* path) override {
        return has_scheme(path, "http://") || has_scheme(path, "https://");
    }

    file_ptr open(const char* path, open_mode mode, abort_source& abort) override {
        std::string url(path);
        if (mode != open_mode::read) throw tunehall_io::exception_io_denied("Cannot write to " + url);
        for (long hops = 0;; ++hops) {
            const http_request_policy policy = policy_for_url(url);
            std::unique_ptr<curl_transfer> transfer = answer_to(policy.url, policy, abort);
            std::string next = transfer->redirect_target();
            if (next.empty()) {
                if (transfer->status() >= 400) raise_http_status(*transfer);
                return make_service<http_file>(std::move(transfer));
            }
            if (hops == policy.max_redirects)
                throw tunehall_io::exception_io("HTTP request to " + std::string(path) + " failed: more than " +
                                                std::to_string(policy.max_redirects) + " redirects");
            url = std::move(next);
        }
    }

    void create_directory(const char* path, abort_source&) override {
        throw tunehall_io::exception_io_no_handler_for_path("Cannot create a folder at a web address: " + std::string(path));
    }
};

} // namespace

service_ref<filesystem> make_http_filesystem() {
    return make_service<http_filesystem>();
}
