#include "config/cfg_var.h"

#include <cstring>

#include <tunehall/config_store.h>
#include <tunehall/core.h>

std::string cfg_var_key(const GUID& guid) { return "cfg_var." + tunehall::guid_to_text(guid); }

namespace {
// The store keeps NUL-terminated texts, so a value is only what comes before its first NUL;
// keeping the same in the cache stops the cache and the store from disagreeing.
std::string up_to_nul(const char* data, std::size_t size) {
    const void* nul = std::memchr(data, '\0', size);
    return std::string(data, nul ? static_cast<std::size_t>(static_cast<const char*>(nul) - data) : size);
}
} // namespace

cfg_string::cfg_string(const GUID& guid, const char* fallback) : cfg_var_base(guid), fallback_(fallback) {}

cfg_string::cfg_string(const GUID& guid, const char* fallback, cfg_var_base*& list)
    : cfg_var_base(guid, list), fallback_(fallback) {}

void cfg_string::load_once() const {
    std::call_once(loaded_, [this] {
        std::string stored = host_service<host_config_store>()->get_string(cfg_var_key(guid()).c_str(), fallback_.c_str());
        std::unique_lock lock(lock_);
        value_ = std::move(stored);
    });
}

std::string cfg_string::get() const {
    load_once();
    std::shared_lock lock(lock_);
    return value_;
}

void cfg_string::set(const std::string& value) {
    load_once();
    std::string text = up_to_nul(value.data(), value.size());
    std::lock_guard serial(set_lock_);
    {
        std::unique_lock lock(lock_);
        if (value_ == text) return;
        value_ = text;
    }
    host_service<host_config_store>()->set_string(cfg_var_key(guid()).c_str(), text.c_str());
}

void cfg_string::set_legacy_value(const void* data, std::size_t size) {
    set(up_to_nul(static_cast<const char*>(data), size));
}

cfg_int::cfg_int(const GUID& guid, std::int64_t fallback) : cfg_var_base(guid), fallback_(fallback) {}

cfg_int::cfg_int(const GUID& guid, std::int64_t fallback, cfg_var_base*& list)
    : cfg_var_base(guid, list), fallback_(fallback) {}

void cfg_int::load_once() const {
    std::call_once(loaded_, [this] {
        value_.store(host_service<host_config_store>()->get_int(cfg_var_key(guid()).c_str(), fallback_),
                     std::memory_order_seq_cst);
    });
}

std::int64_t cfg_int::get() const {
    load_once();
    return value_.load(std::memory_order_seq_cst);
}

void cfg_int::set(std::int64_t value) {
    load_once();
    std::lock_guard serial(set_lock_);
    if (value_.exchange(value, std::memory_order_seq_cst) == value) return;
    host_service<host_config_store>()->set_int(cfg_var_key(guid()).c_str(), value);
}

void cfg_int::set_legacy_value(const void* data, std::size_t size) {
    // Old configurations stored integers in their own width; anything wider than ours or empty
    // is not an integer we ever wrote.
    if (size == 0 || size > 8) return;
    const auto* bytes = static_cast<const unsigned char*>(data);
    std::uint64_t v = 0;
    for (std::size_t i = 0; i < size; ++i) v |= std::uint64_t(bytes[i]) << (8 * i);
    // Narrow values are signed like ours: extend the top bit.
    if (size < 8 && (bytes[size - 1] & 0x80)) v |= ~std::uint64_t(0) << (8 * size);
    set(static_cast<std::int64_t>(v));
}
