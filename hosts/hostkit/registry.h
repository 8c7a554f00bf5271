#pragma once
// The host's service registry: the host's own services first, then each loaded component's, in
// load order and each component's list order. Implements the core handed to components.

#include <map>
#include <thread>
#include <vector>

#include <tunehall/core.h>

namespace hostkit {

class main_queue;

class registry final : public tunehall_core {
public:
    explicit registry(main_queue& queue);
    ~registry();

    // Registers one factory (a component's, or the host's own).
    void add_factory(service_factory& factory);
    // Registers a host service instance under class `cls` (shared by every lookup).
    void add_instance(const GUID& cls, service_ptr instance);
    // Registers every factory of a component's list, in list order.
    void add_list(service_factory* head);
    // Drops every component factory (before the component is unloaded).
    void remove_list(service_factory* head);

    std::size_t service_count(const GUID& cls) override;
    service_ptr service_instance(const GUID& cls, std::size_t index) override;
    bool may_destroy_objects_now() override;
    void destroy_object_later(service_base* object) override;
    bool is_main_thread() override;
    const char* profile_path() override { return profile_.c_str(); }

    void set_profile_path(std::string path) { profile_ = std::move(path); }

private:
    struct entry;
    main_queue& queue_;
    std::thread::id main_thread_;
    std::string profile_;
    std::map<GUID, std::vector<entry>, tunehall::guid_less> services_;
};

} // namespace hostkit
