// The on-disk answer cache on the host's real local files, and the ceiling on what is read.

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include <tunehall/exceptions.h>
#include <tunehall/stream.h>

#include "musicbrainz/bounded_read.h"
#include "musicbrainz/cache.h"
#include "support/temp_folder.h"
#include "support/test_host.h"

namespace {

namespace fs = std::filesystem;
using testing_support::read_file;
using testing_support::write_file;

struct cache_fixture : testing::Test {
    testing_support::test_host host;
    fs::path folder = host.profile() / "mb-cache";
};

TEST_F(cache_fixture, entries_are_files_in_the_profile_replaced_by_a_later_put) {
    musicbrainz_cache cache;
    std::string out = "untouched";
    EXPECT_FALSE(cache.get("disc-nothing", out));  // neither entry nor folder: not an error
    EXPECT_EQ(out, "untouched");
    EXPECT_FALSE(fs::exists(folder));
    const std::string data = std::string("<release>\0binary\xff</release>", 27);
    cache.put("result-0123456789abcdef", "a longer first text", 19);
    cache.put("result-0123456789abcdef", data.data(), data.size());
    EXPECT_EQ(read_file(folder / "result-0123456789abcdef"), data);
    ASSERT_TRUE(cache.get("result-0123456789abcdef", out));
    EXPECT_EQ(out, data);
    // The folder is made on the first put only: with it gone, a write fails and says so.
    fs::remove_all(folder);
    EXPECT_THROW(cache.put("disc-b", "2", 1), tunehall_io::exception_io);
}

TEST_F(cache_fixture, an_existing_folder_is_used_as_it_is_and_a_file_in_its_place_fails_the_put) {
    fs::create_directory(folder);
    write_file(folder / "disc-old", "kept");
    musicbrainz_cache cache;
    cache.put("disc-new", "new", 3);
    EXPECT_EQ(read_file(folder / "disc-old"), "kept");
    EXPECT_EQ(read_file(folder / "disc-new"), "new");
    fs::remove_all(folder);
    write_file(folder, "a file where the folder should be");
    EXPECT_THROW(musicbrainz_cache().put("disc-a", "1", 1), tunehall_io::exception_io);
}

TEST_F(cache_fixture, names_that_could_leave_the_folder_are_refused) {
    musicbrainz_cache cache;
    for (const char* key : {"../escaped", "disc-../../escaped", "disc-a/b", "disc-a\\b", "..", ".hidden", ""}) {
        EXPECT_THROW(cache.put(key, "x", 1), std::invalid_argument) << key;
        std::string out;
        EXPECT_FALSE(cache.get(key, out)) << key;
    }
    EXPECT_FALSE(fs::exists(host.profile() / "escaped"));
    EXPECT_FALSE(fs::exists(host.profile().parent_path() / "escaped"));
}

TEST_F(cache_fixture, an_entry_above_the_ceiling_is_not_read) {
    fs::create_directory(folder);
    write_file(folder / "result-big", std::string(max_answer_bytes + 1, 'x'));
    write_file(folder / "result-limit", std::string(max_answer_bytes, 'x'));
    musicbrainz_cache cache;
    std::string out;
    EXPECT_FALSE(cache.get("result-big", out));
    ASSERT_TRUE(cache.get("result-limit", out));
    EXPECT_EQ(out.size(), max_answer_bytes);
}

// A network answer of unknown length: `total` bytes in pieces of `piece`.
class unsized_answer : public file {
public:
    unsized_answer(std::size_t total, std::size_t piece) : left_(total), piece_(piece) {}
    std::size_t read(void* buffer, std::size_t size, abort_source& abort) override {
        abort.check();
        std::size_t n = std::min({size, left_, piece_});
        std::memset(buffer, 'x', n);
        left_ -= n;
        return n;
    }
    void write(const void*, std::size_t, abort_source&) override { throw tunehall_io::exception_io_denied(); }
    std::uint64_t size(abort_source&) override { return UINT64_MAX; }

private:
    std::size_t left_;
    std::size_t piece_;
};

TEST(bounded_read, an_answer_of_unknown_length_is_cut_off_above_eight_mebibytes) {
    abort_source_dummy no_abort;
    auto at_limit = make_service<unsized_answer>(max_answer_bytes, 1000);
    EXPECT_EQ(read_bounded(*at_limit, no_abort).size(), max_answer_bytes);
    auto beyond = make_service<unsized_answer>(max_answer_bytes + 1, 1000);
    EXPECT_THROW(read_bounded(*beyond, no_abort), tunehall_io::exception_io_data);
    abort_source_impl abort;
    abort.abort();
    auto answer = make_service<unsized_answer>(100, 10);
    EXPECT_THROW(read_bounded(*answer, abort), tunehall_io::exception_aborted);
}

} // namespace
