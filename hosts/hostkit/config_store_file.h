#pragma once
// The configuration store: one file in the profile folder holding integers, strings and blobs.
// Every change writes a whole new file and renames it over the old one.

#include <atomic>
#include <filesystem>
#include <map>
#include <mutex>
#include <string>

#include <tunehall/config_store.h>

namespace hostkit {

// A blob as the stores hand it out: a copy of its bytes.
service_ref<memory_block> make_memory_block(std::string bytes);

class config_store_file : public host_config_store {
public:
    // Loads `file` when it exists. A damaged file is renamed to a copy of its own (see
    // damaged_copy) and the store starts empty, so the built-in defaults hold until something
    // is set. The renaming happens under the profile's lock (taken here unless the caller
    // `profile_locked` already holds it), so that a file another command has just replaced
    // is never taken for the damaged one.
    explicit config_store_file(std::filesystem::path file, bool profile_locked = false);

    std::int64_t get_int(const char* key, std::int64_t fallback) override;
    void set_int(const char* key, std::int64_t value) override;
    std::string get_string(const char* key, const char* fallback) override;
    void set_string(const char* key, const char* value) override;
    service_ref<memory_block> get_blob(const char* key) override;
    void set_blob(const char* key, const void* data, std::size_t size) override;

    // How many times the file was written (diagnostics and tests).
    std::size_t save_count() const { return saves_.load(); }
    // Where loading put a damaged file: "<file>.damaged-<UTC time>[-N]", never an existing
    // name, so that every damaged file is kept. Empty when the file was sound or absent.
    const std::filesystem::path& damaged_copy() const { return damaged_copy_; }

    // The file's form, exposed for tests of damaged files.
    struct value {
        enum class kind : unsigned char { integer = 1, text = 2, blob = 3 } type;
        std::int64_t number = 0;
        std::string bytes;
        bool operator==(const value&) const = default;
    };
    using map = std::map<std::string, value>;
    static std::string encode(const map& values);
    // False when `data` is not a complete store file.
    static bool decode(const std::string& data, map& out);

private:
    void set(const char* key, value v);
    // False when the file exists and does not decode.
    bool load();

    std::filesystem::path file_;
    std::mutex lock_;
    map values_;
    std::atomic<std::size_t> saves_{0};
    std::filesystem::path damaged_copy_;
};

} // namespace hostkit
