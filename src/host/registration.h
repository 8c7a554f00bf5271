#pragma once
// The component's three static registration lists. Objects push themselves on a list's head
// during static construction, so each list runs in reverse order of construction; the lists
// never change once the host has called in, and are read without locks.

#include <cstddef>
#include <cstdint>

#include <tunehall/core.h>
#include <tunehall/stream.h>

namespace sonatag2 {

// Head of the service-factory list handed to the host. Constant-initialised, so it is valid
// before any static constructor of the component runs.
inline service_factory* g_service_list = nullptr;

// Registers one factory of Impl under the class Interface: a fresh instance per request.
template <typename Impl, typename Interface>
using service_factory_t = service_factory_fresh<Impl, Interface>;
// Registers one factory of Impl under the class Interface: one shared instance.
template <typename Impl, typename Interface>
using single_service_factory_t = service_factory_single<Impl, Interface>;

} // namespace sonatag2

// A configuration variable on the component's list: loaded lazily from the host's store under
// "cfg_var." + its GUID text, and the target of the legacy configuration import.
class cfg_var_base {
public:
    cfg_var_base* next() const { return next_; }
    const GUID& guid() const { return guid_; }
    // Takes a value from the legacy configuration stream.
    virtual void set_legacy_value(const void* data, std::size_t size) = 0;

    // Head of the list of every variable of the component.
    static cfg_var_base*& list_head() { return head_; }

protected:
    explicit cfg_var_base(const GUID& guid) : cfg_var_base(guid, head_) {}
    // Pushes on another list (tests build lists of their own).
    cfg_var_base(const GUID& guid, cfg_var_base*& list) : next_(list), guid_(guid) { list = this; }
    ~cfg_var_base() = default;

private:
    static inline cfg_var_base* head_ = nullptr;
    cfg_var_base* next_;
    GUID guid_;
};

// A record of the legacy configuration export: a GUID and a writer of its value.
class cfg_legacy_record {
public:
    cfg_legacy_record* next() const { return next_; }
    const GUID& guid() const { return guid_; }
    // Byte length of the value (may exceed 32 bits; the export refuses such a value).
    virtual std::uint64_t value_size() const = 0;
    // Writes exactly value_size() bytes.
    virtual void write_value(stream_writer& out, abort_source& abort) const = 0;

    static cfg_legacy_record*& list_head() { return head_; }

protected:
    explicit cfg_legacy_record(const GUID& guid) : cfg_legacy_record(guid, head_) {}
    // Pushes on another list (tests build lists of their own).
    cfg_legacy_record(const GUID& guid, cfg_legacy_record*& list) : next_(list), guid_(guid) { list = this; }
    ~cfg_legacy_record() = default;

private:
    static inline cfg_legacy_record* head_ = nullptr;
    cfg_legacy_record* next_;
    GUID guid_;
};
