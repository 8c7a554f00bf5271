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
#include "request_failures.h"
#include "request_rate_gate.h"

namespace {

bool has_scheme(std::string_view path, std::string_view scheme) {
    if (path.size() < scheme.size()) return false;
    for (std::size_t i = 0; i < scheme.size(); ++i)
        if (std::tolower(static_cast<unsigned char>(path[i])) != scheme[i]) return false;
    return true;
}

// The body of an answer, read as it arrives. A failure on the way is recorded for its server;
// so is an answer its reader dropped before the end: the reader found it unusable (a CDDB
// reader stops only at the end of the answer, on a failure, or when the user aborts, and then
// nobody asks what failed).
class http_file : public file {
public:
    http_file(std::unique_ptr<curl_transfer> transfer, request_failures* failures)
        : transfer_(std::move(transfer)), failures_(failures) {}
    ~http_file() override {
        if (failures_ && !ended_)
            failures_->record(transfer_->origin(), "answer rejected as malformed");
    }

    std::size_t read(void* buffer, std::size_t size, abort_source& abort) override {
        try {
            const std::size_t n = transfer_->read(buffer, size, abort);
            if (n == 0 && size > 0) ended_ = true;
            return n;
        } catch (const tunehall_io::exception_aborted&) {
            ended_ = true;
            throw;
        } catch (const tunehall_io::exception_io& e) {
            ended_ = true;
            if (failures_) failures_->record(transfer_->origin(), transfer_->failure().empty() ? e.what() : transfer_->failure());
            throw;
        }
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
    request_failures* failures_;
    bool ended_ = false;
};

std::string status_text(const curl_transfer& transfer) {
    std::string text = std::to_string(transfer.status());
    if (!transfer.reason().empty()) text += " " + transfer.reason();
    return text;
}

[[noreturn]] void raise_http_status(const curl_transfer& transfer) {
    std::string text = "HTTP request to " + transfer.url() + " failed: " + status_text(transfer);
    if (transfer.status() == 404) throw tunehall_io::exception_io_not_found(text);
    throw tunehall_io::exception_io(text);
}

using steady = std::chrono::steady_clock;

// One request's answer under its policy: its turn at the rate gate, and busy answers asked
// again while the deadline leaves time for it. `reason` receives why it failed, if it does.
std::unique_ptr<curl_transfer> answer_to(const std::string& url, const http_request_policy& policy,
                                         steady::time_point deadline, abort_source& abort, std::string& reason) {
    for (int retry = 0;; ++retry) {
        if (policy.min_interval.count() > 0)
            request_rate_gate::process_wide().wait_turn(policy.rate_key, policy.min_interval, abort);
        auto transfer = std::make_unique<curl_transfer>(url, policy, deadline);
        try {
            transfer->wait_for_headers(abort);
        } catch (const tunehall_io::exception_io&) {
            reason = transfer->failure();
            throw;
        }
        if (transfer->status() == 503 && retry < policy.retries_on_503) {
            const auto delay = delay_before_retry(policy, retry, transfer->retry_after_seconds());
            if (steady::now() + delay >= deadline) return transfer;
            // Close the connection before waiting: a busy server should not hold it for us.
            transfer.reset();
            abortable_wait_until(steady::now() + delay, abort);
            continue;
        }
        return transfer;
    }
}

class http_filesystem : public filesystem {
public:
    http_filesystem(std::chrono::milliseconds deadline, request_failures* failures)
        : deadline_(deadline), failures_(failures) {}

    bool is_our_path(const char* path) override {
        return has_scheme(path, "http://") || has_scheme(path, "https://");
    }

    file_ptr open(const char* path, open_mode mode, abort_source& abort) override {
        std::string url(path);
        if (mode != open_mode::read) throw tunehall_io::exception_io_denied("Cannot write to " + url);
        const steady::time_point deadline = steady::now() + deadline_;
        std::string reason;
        try {
            for (long hops = 0;; ++hops) {
                const http_request_policy policy = policy_for_url(url, deadline_);
                std::unique_ptr<curl_transfer> transfer = answer_to(policy.url, policy, deadline, abort, reason);
                std::string next = transfer->redirect_target();
                if (next.empty()) {
                    if (transfer->status() >= 400) {
                        reason = "HTTP status " + status_text(*transfer);
                        raise_http_status(*transfer);
                    }
                    return make_service<http_file>(std::move(transfer), failures_);
                }
                if (hops == policy.max_redirects) {
                    reason = "more than " + std::to_string(policy.max_redirects) + " redirects";
                    throw tunehall_io::exception_io("HTTP request to " + std::string(path) + " failed: " + reason);
                }
                url = std::move(next);
            }
        } catch (const tunehall_io::exception_aborted&) {
            throw;
        } catch (const tunehall_io::exception_io& e) {
            if (failures_) failures_->record(origin_of(url), reason.empty() ? e.what() : reason);
            throw;
        }
    }

    void create_directory(const char* path, abort_source&) override {
        throw tunehall_io::exception_io_no_handler_for_path("Cannot create a folder at a web address: " + std::string(path));
    }

private:
    std::chrono::milliseconds deadline_;
    request_failures* failures_;
};

} // namespace

service_ref<filesystem> make_http_filesystem(std::chrono::milliseconds deadline, request_failures* failures) {
    return make_service<http_filesystem>(deadline, failures);
}
