#include "registry.h"

#include <algorithm>

#include "main_queue.h"

namespace hostkit {

// A registered service: a component's factory, or a host instance.
struct registry::entry {
    service_factory* factory = nullptr;
    service_ptr instance;
};

registry::registry(main_queue& queue) : queue_(queue), main_thread_(std::this_thread::get_id()) {}

registry::~registry() = default;

void registry::add_factory(service_factory& factory) {
    services_[factory.class_guid()].push_back(entry{&factory, {}});
}

// The host's own services come before every component's, whenever they were registered.
void registry::add_instance(const GUID& cls, service_ptr instance) {
    auto& list = services_[cls];
    auto first_component = std::find_if(list.begin(), list.end(), [](const entry& e) { return e.factory != nullptr; });
    list.insert(first_component, entry{nullptr, std::move(instance)});
}

void registry::add_list(service_factory* head) {
    for (service_factory* f = head; f; f = f->next()) add_factory(*f);
}

void registry::remove_list(service_factory* head) {
    for (service_factory* f = head; f; f = f->next()) {
        auto& list = services_[f->class_guid()];
        list.erase(std::remove_if(list.begin(), list.end(), [f](const entry& e) { return e.factory == f; }), list.end());
    }
}

std::size_t registry::service_count(const GUID& cls) {
    auto it = services_.find(cls);
    return it == services_.end() ? 0 : it->second.size();
}

service_ptr registry::service_instance(const GUID& cls, std::size_t index) {
    auto it = services_.find(cls);
    if (it == services_.end() || index >= it->second.size()) return {};
    entry& e = it->second[index];
    return e.factory ? e.factory->create_instance() : e.instance;
}

// Component objects may die at once only on the main thread, outside the queue's own callbacks
// (an object dying inside a callback of its own would pull the ground from under it).
bool registry::may_destroy_objects_now() { return is_main_thread() && !queue_.is_dispatching(); }

void registry::destroy_object_later(service_base* object) {
    queue_.post([object] { service_impl_helper::release_object_now(object); });
}

bool registry::is_main_thread() { return std::this_thread::get_id() == main_thread_; }

} // namespace hostkit
