#pragma once
// What a component is to the host: one exported entry returning a client object, and the
// services every component registers about itself.

#include <cstdint>

#include "abort.h"
#include "platform.h"
#include "service.h"
#include "stream.h"

class tunehall_core;

// The component's client object. Operations in this order; the host calls them on its main
// thread.
class tunehall_client {
public:
    // 1. The client interface version the component was built against.
    virtual std::uint32_t get_version() = 0;
    // 2. Head of the component's service-factory list.
    virtual service_factory* get_service_list() = 0;
    // 3. Writes the legacy configuration: per record its GUID, u32 LE length, value.
    virtual void get_config(stream_writer& out, abort_source& abort) = 0;
    // 4. Reads the legacy configuration back.
    virtual void set_config(stream_reader& in, abort_source& abort) = 0;
    // 5. The module's full path (UTF-8).
    virtual void set_library_path(const char* path) = 0;
    // 6. Whether the host's services are initialised (objects then die when the host says).
    virtual void services_init(bool initialised) = 0;
    // 7. Always false.
    virtual bool is_debug() = 0;

protected:
    ~tunehall_client() = default;
};

// Interface version of this SDK.
inline constexpr std::uint32_t tunehall_client_version = 81;

// The entry every component exports under the name "tunehall_get_interface".
using tunehall_get_interface_fn = tunehall_client* (*)(tunehall_core* core, module_handle module);
inline constexpr const char* tunehall_entry_name = "tunehall_get_interface";

// Name, version and about text shown in the host's component list.
class component_version : public service_base {
    TUNEHALL_SERVICE_CLASS(service_base, {0xd4633b7d, 0x4050, 0x4652, {0xa8, 0x1e, 0xad, 0x75, 0xe0, 0xca, 0x46, 0xcd}})
public:
    virtual const char* get_component_name() = 0;
    virtual const char* get_component_version() = 0;
    virtual const char* get_about_message() = 0;
};

// Answers whether the component is installed under its intended file name.
class installation_check : public service_base {
    TUNEHALL_SERVICE_CLASS(service_base, {0x35c04007, 0x5867, 0x437b, {0xba, 0x7a, 0xd0, 0x4e, 0x97, 0x4f, 0x91, 0xdd}})
public:
    // True when installed as intended; otherwise reports the rename to the host and answers
    // false. Never raises.
    virtual bool is_installed_correctly() = 0;
};
