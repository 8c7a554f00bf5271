// Variables used from the lookup's worker and the user-interface thread at once. These tests
// race real threads on purpose; the ThreadSanitizer build is what turns a missing lock into a
// failure every time.

#include <atomic>
#include <cstdint>
#include <latch>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "config/cfg_var.h"
#include "support/test_host.h"

namespace {

using testing_support::test_host;

constexpr GUID text_guid = {0x6e2b9a41, 0x0c57, 0x4f38, {0xb1, 0x9d, 0x44, 0x2a, 0x7e, 0x05, 0xc6, 0x13}};
constexpr GUID number_guid = {0x2a8d5f73, 0xe916, 0x4c02, {0x86, 0x3b, 0x5f, 0xd1, 0x0a, 0x97, 0x4e, 0x28}};
constexpr int rounds = 200;
constexpr int trials = 200;

service_ref<hostkit::config_store_file> reopen_store(const test_host& th) {
    return make_service<hostkit::config_store_file>(th.profile() / hostkit::host::config_file_name);
}

TEST(cfg_var_threads, first_reads_from_two_threads_load_the_stored_value_once) {
    test_host th;
    th.host().config().set_string(cfg_var_key(text_guid).c_str(), "stored@example.org");
    th.host().config().set_int(cfg_var_key(number_guid).c_str(), 0);
    cfg_var_base* list = nullptr;
    cfg_string email(text_guid, "user@tessellon.invalid", list);
    cfg_int wipe(number_guid, 1, list);

    std::latch start(2);
    std::string seen_text[2];
    std::int64_t seen_number[2] = {-1, -1};
    auto first_use = [&](int i) {
        start.arrive_and_wait();
        seen_text[i] = email.get();
        seen_number[i] = wipe.get();
    };
    std::thread a(first_use, 0), b(first_use, 1);
    a.join();
    b.join();
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(seen_text[i], "stored@example.org") << "thread " << i;
        EXPECT_EQ(seen_number[i], 0) << "thread " << i;
    }
}

TEST(cfg_var_threads, reader_sees_only_whole_values_while_another_thread_sets_them) {
    test_host th;
    cfg_var_base* list = nullptr;
    // Long texts: a read torn by a concurrent replacement would mix the two.
    const std::string fallback(600, 'f'), one(700, '1'), two(800, '2');
    cfg_string text(text_guid, fallback.c_str(), list);
    cfg_int number(number_guid, 0, list);
    const std::int64_t odd = 0x0101010101010101, even = 0x7e7e7e7e7e7e7e7e;

    std::latch start(2);
    std::atomic<bool> writer_done{false};
    std::thread writer([&] {
        start.arrive_and_wait();
        for (int i = 0; i < rounds; ++i) {
            text.set(i % 2 ? one : two);
            number.set(i % 2 ? odd : even);
        }
        writer_done = true;
    });

    std::vector<std::string> bad_texts;
    std::vector<std::int64_t> bad_numbers;
    long reads = 0;
    start.arrive_and_wait();
    do {
        std::string t = text.get();
        std::int64_t n = number.get();
        if (t != fallback && t != one && t != two) bad_texts.push_back(t.substr(0, 20));
        if (n != 0 && n != odd && n != even) bad_numbers.push_back(n);
        ++reads;
    } while (!writer_done);
    writer.join();

    EXPECT_TRUE(bad_texts.empty()) << bad_texts.size() << " mixed texts, first: "
                                   << (bad_texts.empty() ? "" : bad_texts.front());
    EXPECT_TRUE(bad_numbers.empty()) << bad_numbers.size() << " unexpected numbers";
    EXPECT_GT(reads, 0);
    // The last set wins, in the cache and in the file.
    EXPECT_EQ(text.get(), one);
    EXPECT_EQ(number.get(), odd);
    EXPECT_EQ(reopen_store(th)->get_string(cfg_var_key(text_guid).c_str(), ""), one);
    EXPECT_EQ(reopen_store(th)->get_int(cfg_var_key(number_guid).c_str(), 0), odd);
}

TEST(cfg_var_threads, two_setters_at_once_leave_the_cache_and_the_store_agreeing) {
    test_host th;
    // Many short races rather than one long one: only the last two sets of a race decide
    // whether the cache and the file can end up holding different values.
    int disagreements = 0;
    for (int trial = 0; trial < trials; ++trial) {
        GUID text_key = text_guid, number_key = number_guid;
        text_key.Data1 += static_cast<std::uint32_t>(trial);
        number_key.Data1 += static_cast<std::uint32_t>(trial);
        cfg_var_base* list = nullptr;
        cfg_string text(text_key, "start", list);
        cfg_int number(number_key, 0, list);
        // Loaded beforehand, so that the race is between the two replacements alone.
        text.get();
        number.get();
        std::latch text_start(2), number_start(2);
        auto setter = [&](int id) {
            text_start.arrive_and_wait();
            text.set("thread " + std::to_string(id));
            number_start.arrive_and_wait();
            number.set(id);
        };
        std::thread a(setter, 1), b(setter, 2);
        a.join();
        b.join();
        EXPECT_TRUE(text.get() == "thread 1" || text.get() == "thread 2") << text.get();
        auto stored = reopen_store(th);
        if (stored->get_string(cfg_var_key(text_key).c_str(), "") != text.get()) ++disagreements;
        if (stored->get_int(cfg_var_key(number_key).c_str(), 0) != number.get()) ++disagreements;
    }
    EXPECT_EQ(disagreements, 0);
}

} // namespace
