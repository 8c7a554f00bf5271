#include "run_only_config.h"

#include "config_store_file.h"

namespace hostkit {

const run_only_config::value* run_only_config::changed(const char* key) const {
    auto it = changes_.find(key);
    return it == changes_.end() ? nullptr : &it->second;
}

void run_only_config::change(const char* key, value v) {
    std::lock_guard lock(lock_);
    changes_[key] = std::move(v);
}

std::int64_t run_only_config::get_int(const char* key, std::int64_t fallback) {
    {
        std::lock_guard lock(lock_);
        if (const value* v = changed(key)) return std::holds_alternative<std::int64_t>(*v) ? std::get<std::int64_t>(*v) : fallback;
    }
    return saved_->get_int(key, fallback);
}

void run_only_config::set_int(const char* key, std::int64_t v) { change(key, v); }

std::string run_only_config::get_string(const char* key, const char* fallback) {
    {
        std::lock_guard lock(lock_);
        if (const value* v = changed(key)) return std::holds_alternative<std::string>(*v) ? std::get<std::string>(*v) : fallback;
    }
    return saved_->get_string(key, fallback);
}

void run_only_config::set_string(const char* key, const char* v) { change(key, std::string(v)); }

service_ref<memory_block> run_only_config::get_blob(const char* key) {
    {
        std::lock_guard lock(lock_);
        if (const value* v = changed(key)) {
            if (!std::holds_alternative<blob>(*v)) return {};
            return make_memory_block(std::get<blob>(*v).bytes);
        }
    }
    return saved_->get_blob(key);
}

void run_only_config::set_blob(const char* key, const void* data, std::size_t size) {
    change(key, blob{std::string(static_cast<const char*>(data), size)});
}

} // namespace hostkit
