// The configuration store file: values survive a restart, and a crash in the middle of a save
// never leaves a file that does not load.

#include <gtest/gtest.h>

#include <csignal>
#include <random>
#include <sys/wait.h>
#include <unistd.h>

#include <hostkit/config_store_file.h>

#include "support/temp_folder.h"

using hostkit::config_store_file;
using testing_support::temp_folder;

namespace {
std::string blob_text(config_store_file& store, const char* key) {
    auto b = store.get_blob(key);
    return b ? std::string(static_cast<const char*>(b->data()), b->size()) : "<absent>";
}
} // namespace

TEST(config_store, every_kind_of_value_survives_a_restart) {
    temp_folder dir;
    const std::string binary("\0\x01\xff tail", 7);
    {
        auto store = make_service<config_store_file>(dir / "config.tsc");
        store->set_int("count", -9000000000LL);
        store->set_string("email", "ann@example.invalid");
        store->set_string("empty", "");
        store->set_blob("servers", binary.data(), binary.size());
        store->set_blob("nothing", nullptr, 0);
        store->set_string("umlaut", "M\xc3\xa4nner");
    }
    auto store = make_service<config_store_file>(dir / "config.tsc");
    EXPECT_TRUE(store->damaged_copy().empty());
    EXPECT_EQ(store->get_int("count", 0), -9000000000LL);
    EXPECT_EQ(store->get_string("email", "x"), "ann@example.invalid");
    EXPECT_EQ(store->get_string("empty", "x"), "");
    EXPECT_EQ(store->get_string("umlaut", "x"), "M\xc3\xa4nner");
    EXPECT_EQ(blob_text(*store, "servers"), binary);
    EXPECT_EQ(blob_text(*store, "nothing"), "");
    EXPECT_EQ(blob_text(*store, "missing"), "<absent>");
    EXPECT_EQ(store->get_int("missing", 42), 42);
    EXPECT_EQ(store->get_string("missing", "fallback"), "fallback");
    // A value of one kind is not read as another.
    EXPECT_EQ(store->get_int("email", 7), 7);
}

TEST(config_store, every_cut_of_a_file_is_rejected_and_set_aside) {
    config_store_file::map values;
    values["a"] = {config_store_file::value::kind::text, 0, "alpha"};
    values["b"] = {config_store_file::value::kind::integer, 12, {}};
    values["c"] = {config_store_file::value::kind::blob, 0, std::string("\0\0x", 3)};
    const std::string whole = config_store_file::encode(values);
    config_store_file::map out;
    ASSERT_TRUE(config_store_file::decode(whole, out));
    EXPECT_EQ(out, values);
    for (std::size_t n = 0; n < whole.size(); ++n)
        EXPECT_FALSE(config_store_file::decode(whole.substr(0, n), out)) << "cut at " << n;

    temp_folder dir;
    // Each damaged file gets a copy of its own, even two within the same second.
    for (std::size_t cut : {whole.size() / 2, whole.size() - 1}) {
        testing_support::write_file(dir / "config.tsc", whole.substr(0, cut));
        auto store = make_service<config_store_file>(dir / "config.tsc");
        EXPECT_EQ(store->get_string("a", "default"), "default");
        EXPECT_EQ(testing_support::read_file(store->damaged_copy()), whole.substr(0, cut));
    }
    int copies = 0;
    for (auto& e : std::filesystem::directory_iterator(dir.path()))
        copies += e.path().filename().string().rfind("config.tsc.damaged-", 0) == 0;
    EXPECT_EQ(copies, 2);
}

// A writer process saving as fast as it can is killed at a random moment, 200 times; every time
// the store loads, with a value the writer really saved.
TEST(config_store, a_writer_killed_mid_save_always_leaves_a_loadable_store) {
    temp_folder dir;
    const auto file = dir / "config.tsc";
    {
        auto store = make_service<config_store_file>(file);
        store->set_string("generation", "0");
    }
    std::mt19937 random(20261122);
    std::uniform_int_distribution<int> pause_us(0, 4000);
    const std::string padding(3000, 'p');  // a file of several kilobytes takes a while to write
    for (int round = 0; round < 200; ++round) {
        int ready[2];
        ASSERT_EQ(pipe(ready), 0);
        pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            close(ready[0]);
            auto store = make_service<config_store_file>(file);
            (void)!write(ready[1], "r", 1);
            for (long i = 1;; ++i) {
                store->set_string("padding", padding.c_str());
                store->set_string("generation", std::to_string(i).c_str());
            }
        }
        close(ready[1]);
        char c;
        (void)!read(ready[0], &c, 1);
        close(ready[0]);
        usleep(static_cast<useconds_t>(pause_us(random)));
        kill(child, SIGKILL);
        int wstatus = 0;
        waitpid(child, &wstatus, 0);
        ASSERT_TRUE(WIFSIGNALED(wstatus));

        auto store = make_service<config_store_file>(file);
        ASSERT_TRUE(store->damaged_copy().empty()) << "round " << round;
        std::string generation = store->get_string("generation", "");
        ASSERT_FALSE(generation.empty()) << "round " << round;
        ASSERT_EQ(generation.find_first_not_of("0123456789"), std::string::npos) << generation;
        // Temporary files of the killed writer are left beside the store, never over it.
        for (auto& e : std::filesystem::directory_iterator(dir.path()))
            if (e.path().filename().string().find(".tmp-") != std::string::npos) std::filesystem::remove(e.path());
    }
}
