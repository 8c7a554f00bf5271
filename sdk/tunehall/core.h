#pragma once
// The host's core: the registry every service lookup goes through, handed to the component's
// entry. One module-wide pointer to it is kept by the SDK library of each module.

#include <cstddef>
#include <mutex>
#include <vector>

#include "exceptions.h"
#include "service.h"

class tunehall_core {
public:
    // Number of services registered for class `cls`, in the host's order.
    virtual std::size_t service_count(const GUID& cls) = 0;
    // Instance of the `index`-th service of class `cls`; empty when out of range.
    virtual service_ptr service_instance(const GUID& cls, std::size_t index) = 0;
    // False while the host cannot let component objects die (for example during a callback).
    virtual bool may_destroy_objects_now() = 0;
    // Destroys `object` later, on the host's main thread.
    virtual void destroy_object_later(service_base* object) = 0;
    // True on the host's main (user-interface) thread.
    virtual bool is_main_thread() = 0;
    // The user's profile folder, UTF-8, without a trailing separator.
    virtual const char* profile_path() = 0;

protected:
    ~tunehall_core() = default;
};

namespace tunehall {

// The core this module talks to (set by the component's entry, or by the host itself).
tunehall_core* core();
void set_core(tunehall_core* c);

// Whether the component's services are initialised (the host's flag; false in hosts).
bool services_initialised();
void set_services_initialised(bool v);

} // namespace tunehall

// The single service of class T; a missing one is a fatal internal error of the host.
template <typename T>
service_ref<T> host_service() {
    tunehall_core* c = tunehall::core();
    if (!c || c->service_count(T::class_guid) == 0) tunehall_bug_check("Service not found");
    return service_cast<T>(c->service_instance(T::class_guid, 0));
}

// The single service of class T, or empty when the host has none.
template <typename T>
service_ref<T> try_host_service() {
    tunehall_core* c = tunehall::core();
    if (!c || c->service_count(T::class_guid) == 0) return {};
    return service_cast<T>(c->service_instance(T::class_guid, 0));
}

// Every service of class T, in the host's order.
template <typename T>
std::vector<service_ref<T>> all_services() {
    std::vector<service_ref<T>> out;
    tunehall_core* c = tunehall::core();
    if (!c) return out;
    std::size_t n = c->service_count(T::class_guid);
    for (std::size_t i = 0; i < n; ++i)
        if (service_ptr p = c->service_instance(T::class_guid, i)) out.push_back(service_cast<T>(p));
    return out;
}

// Registers one factory per T on the given list at static construction. `single` factories
// hand out one shared instance; the others make a fresh instance on every request.
template <typename T, typename Interface = T>
class service_factory_single final : public service_factory {
public:
    explicit service_factory_single(service_factory*& list)
        : service_factory(Interface::class_guid, list) {}
    service_ptr create_instance() override {
        std::call_once(once_, [this] { instance_ = make_service<T>(); });
        return service_ptr(instance_.get());
    }

private:
    std::once_flag once_;
    service_ref<T> instance_;
};

template <typename T, typename Interface = T>
class service_factory_fresh final : public service_factory {
public:
    explicit service_factory_fresh(service_factory*& list)
        : service_factory(Interface::class_guid, list) {}
    service_ptr create_instance() override { return service_ptr(make_service<T>().get()); }
};
