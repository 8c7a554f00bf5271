#include "cddb_test_support.h"

#include <algorithm>
#include <cstring>

#include <gtest/gtest.h>

#include <tunehall/exceptions.h>

#include "cddb/line_reader.h"
#include "support/temp_folder.h"

namespace cddb_testing {

double test_track::length() const {
    std::size_t i = std::min(reads_, lengths_.size() - 1);
    ++reads_;
    return lengths_[i];
}

bool test_track::get_info(track_info& out) const {
    if (!info_) return false;
    out = *info_;
    return true;
}

track_list tracks_of(const std::vector<double>& lengths, const char* pregap) {
    track_list out;
    for (std::size_t i = 0; i < lengths.size(); ++i) {
        track_info info;
        info.length = lengths[i];
        info.info_set("codec", "FLAC");
        if (i == 0 && pregap) info.info_set("pregap", pregap);
        out.push_back(make_service<test_track>(std::vector<double>{lengths[i]}, info));
    }
    return out;
}

track_list tracks_without_info(const std::vector<double>& lengths) {
    track_list out;
    for (double length : lengths) out.push_back(make_service<test_track>(std::vector<double>{length}, std::nullopt));
    return out;
}

std::size_t memory_reader::read(void* buffer, std::size_t size, abort_source&) {
    std::size_t n = std::min(size, bytes_.size() - at_);
    std::memcpy(buffer, bytes_.data() + at_, n);
    at_ += n;
    return n;
}

std::string fixture_bytes(const std::string& relative) {
    std::string bytes = testing_support::read_file(testing_support::fixture(relative));
    if (bytes.empty()) ADD_FAILURE() << "fixture missing or empty: " << relative;
    return bytes;
}

void feed_answer(response_handler& handler, const std::string& answer) {
    memory_reader in(answer);
    abort_source_dummy never;
    read_answer_lines(in, handler, never);
}

namespace {

// One answer as the host's HTTP layer hands it over: a stream of unknown size.
class canned_stream : public file {
public:
    canned_stream(canned_http::answer a, std::shared_ptr<int> open_count)
        : answer_(std::move(a)), open_count_(std::move(open_count)) {
        ++*open_count_;
    }
    ~canned_stream() override { --*open_count_; }

    std::size_t read(void* buffer, std::size_t size, abort_source&) override {
        std::size_t n = std::min(size, answer_.bytes.size() - served_);
        std::memcpy(buffer, answer_.bytes.data() + served_, n);
        served_ += n;
        return n;
    }
    void write(const void*, std::size_t, abort_source&) override { throw tunehall_io::exception_io_denied(); }
    std::uint64_t size(abort_source&) override { return UINT64_MAX; }

private:
    canned_http::answer answer_;
    std::shared_ptr<int> open_count_;
    std::size_t served_ = 0;
};

} // namespace

failure failure_of(const std::function<void()>& action) {
    try {
        action();
    } catch (const tunehall_io::exception_aborted& e) {
        return {"aborted", e.what()};
    } catch (const tunehall_io::exception_io_not_found& e) {
        return {"not found", e.what()};
    } catch (const tunehall_io::exception_io_data& e) {
        return {"data", e.what()};
    } catch (const tunehall_io::exception_io& e) {
        return {"io", e.what()};
    }
    return no_failure;
}

bool canned_http::is_our_path(const char* path) { return std::strncmp(path, "http://", 7) == 0; }

file_ptr canned_http::open(const char* path, open_mode mode, abort_source& abort) {
    abort.check();
    urls_.emplace_back(path);
    if (mode != open_mode::read) throw tunehall_io::exception_io_denied();
    if (answers_.empty()) throw tunehall_io::exception_io_not_found("no answer prepared for " + std::string(path));
    answer a = std::move(answers_.front());
    answers_.erase(answers_.begin());
    if (a.failure) throw tunehall_io::exception_io(*a.failure);
    return make_service<canned_stream>(std::move(a), open_streams_);
}

} // namespace cddb_testing
