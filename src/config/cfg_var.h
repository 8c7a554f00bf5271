#pragma once
// Configuration variables: one value under "cfg_var." + the variable's GUID text in the host's
// store, read once on first use and cached for the life of the process. Safe to use from the
// main thread and from workers at once.

#include <atomic>
#include <cstdint>
#include <mutex>
#include <shared_mutex>
#include <string>

#include "host/registration.h"

// The store key of a variable: "cfg_var." + the 36-character GUID text.
std::string cfg_var_key(const GUID& guid);

class cfg_string final : public cfg_var_base {
public:
    cfg_string(const GUID& guid, const char* fallback);
    // On another list (tests build lists of their own).
    cfg_string(const GUID& guid, const char* fallback, cfg_var_base*& list);
    // A copy of the current value.
    std::string get() const;
    // Replaces the value and writes it to the store; nothing happens when it is unchanged.
    void set(const std::string& value);
    void set_legacy_value(const void* data, std::size_t size) override;

private:
    void load_once() const;

    std::string fallback_;
    mutable std::once_flag loaded_;
    mutable std::shared_mutex lock_;
    mutable std::string value_;
    // Serialises setters so that the store ends with the value the cache holds.
    std::mutex set_lock_;
};

class cfg_int final : public cfg_var_base {
public:
    cfg_int(const GUID& guid, std::int64_t fallback);
    // On another list (tests build lists of their own).
    cfg_int(const GUID& guid, std::int64_t fallback, cfg_var_base*& list);
    std::int64_t get() const;
    // Replaces the value and writes it to the store; nothing happens when it is unchanged.
    void set(std::int64_t value);
    void set_legacy_value(const void* data, std::size_t size) override;

private:
    void load_once() const;

    std::int64_t fallback_;
    mutable std::once_flag loaded_;
    mutable std::atomic<std::int64_t> value_{0};
    // Serialises setters so that the store ends with the value the cache holds.
    std::mutex set_lock_;
};
