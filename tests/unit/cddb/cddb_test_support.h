#pragma once
// Helpers shared by the CDDB tests: tracks with chosen lengths and info records, an answer held
// in memory, how an action failed, and a stand-in for the host's HTTP layer.

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <tunehall/stream.h>
#include <tunehall/track.h>

#include "cddb/disc_record.h"
#include "cddb/response_handler.h"

namespace cddb_testing {

class test_track : public track_handle {
public:
    // Each length() call answers the next of the given lengths, the last one repeating; `info`
    // absent: the host has no info record for the track.
    test_track(std::vector<double> lengths_per_read, std::optional<track_info> info)
        : lengths_(std::move(lengths_per_read)), info_(std::move(info)) {}

    const char* path() const override { return ""; }
    std::uint32_t subsong() const override { return 0; }
    double length() const override;
    bool get_info(track_info& out) const override;

private:
    std::vector<double> lengths_;
    std::optional<track_info> info_;
    mutable std::size_t reads_ = 0;
};

// Tracks of the given lengths; the first has an info record with `pregap` (no field when null).
track_list tracks_of(const std::vector<double>& lengths, const char* pregap = nullptr);
// The same, but the host has no info record for any track.
track_list tracks_without_info(const std::vector<double>& lengths);

class memory_reader final : public stream_reader {
public:
    explicit memory_reader(std::string bytes) : bytes_(std::move(bytes)) {}
    std::size_t read(void* buffer, std::size_t size, abort_source& abort) override;

private:
    std::string bytes_;
    std::size_t at_ = 0;
};

// A fixture file's bytes; fails the calling test when the file is missing or empty.
std::string fixture_bytes(const std::string& relative);

// Feeds `answer` through the real line splitter into `handler`.
void feed_answer(response_handler& handler, const std::string& answer);

// How an action ended: kind "none", or "aborted", "not found", "data", "io" and the text.
struct failure {
    std::string kind;
    std::string text;
    bool operator==(const failure&) const = default;
};
inline void PrintTo(const failure& f, std::ostream* os) { *os << f.kind << ": " << f.text; }
failure failure_of(const std::function<void()>& action);
inline const failure no_failure{"none", ""};

// Stands in for the host's HTTP layer: answers every http:// URL with the next prepared answer,
// or raises tunehall_io::exception_io with the prepared failure text.
class canned_http : public filesystem {
public:
    struct answer {
        std::string bytes;
        std::optional<std::string> failure;
    };

    void push(std::string bytes) { answers_.push_back({std::move(bytes), std::nullopt}); }
    void push(answer a) { answers_.push_back(std::move(a)); }
    const std::vector<std::string>& urls() const { return urls_; }
    // How many opened streams are still held by someone.
    int open_streams() const { return *open_streams_; }

    bool is_our_path(const char* path) override;
    file_ptr open(const char* path, open_mode mode, abort_source& abort) override;
    void create_directory(const char*, abort_source&) override {}

private:
    std::vector<answer> answers_;
    std::vector<std::string> urls_;
    std::shared_ptr<int> open_streams_ = std::make_shared<int>(0);
};

} // namespace cddb_testing
