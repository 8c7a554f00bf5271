#pragma once
// The component's single client object, returned by the entry.

#include <mutex>
#include <string>

#include <tunehall/component.h>

#include "host/registration.h"

namespace sonatag2 {

class component_client final : public tunehall_client {
public:
    std::uint32_t get_version() override;
    service_factory* get_service_list() override;
    void get_config(stream_writer& out, abort_source& abort) override;
    void set_config(stream_reader& in, abort_source& abort) override;
    void set_library_path(const char* path) override;
    void services_init(bool initialised) override;
    bool is_debug() override;

    // Called by the entry with the host's core and the module handle.
    void set_host(tunehall_core* core, module_handle module);
    module_handle module() const;
    std::string path() const;

private:
    mutable std::mutex lock_;
    module_handle module_ = nullptr;
    std::string path_;
};

// The one client object.
component_client& client();

} // namespace sonatag2
