#pragma once
// A configuration store whose changes last for one run: reads see the saved store with this run's
// changes laid over it, and nothing is ever written back. A command whose flags only decide what
// it does this time (--wipe, --keep, --dry-run) runs with it, so that a dialog that saves a
// setting when a box is clicked leaves the saved default alone.

#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <variant>

#include <tunehall/config_store.h>

namespace hostkit {

class run_only_config : public host_config_store {
public:
    explicit run_only_config(service_ref<host_config_store> saved) : saved_(std::move(saved)) {}

    std::int64_t get_int(const char* key, std::int64_t fallback) override;
    void set_int(const char* key, std::int64_t value) override;
    std::string get_string(const char* key, const char* fallback) override;
    void set_string(const char* key, const char* value) override;
    service_ref<memory_block> get_blob(const char* key) override;
    void set_blob(const char* key, const void* data, std::size_t size) override;

private:
    struct blob {
        std::string bytes;
    };
    // A key changed in this run holds its new value, of whichever kind it was set as; a read of
    // another kind finds none, as in the saved store.
    using value = std::variant<std::int64_t, std::string, blob>;
    const value* changed(const char* key) const;
    void change(const char* key, value v);

    service_ref<host_config_store> saved_;
    mutable std::mutex lock_;
    std::map<std::string, value> changes_;
};

} // namespace hostkit
