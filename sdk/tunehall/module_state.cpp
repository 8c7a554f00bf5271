// The state each module (component or host) keeps about its core: which core it talks to and
// whether its objects must ask before dying.

#include <atomic>

#include "core.h"
#include "shared.h"

namespace {
std::atomic<tunehall_core*> g_core{nullptr};
std::atomic<bool> g_services_initialised{false};
} // namespace

namespace tunehall {
tunehall_core* core() { return g_core.load(std::memory_order_acquire); }
void set_core(tunehall_core* c) { g_core.store(c, std::memory_order_release); }
bool services_initialised() { return g_services_initialised.load(std::memory_order_acquire); }
void set_services_initialised(bool v) { g_services_initialised.store(v, std::memory_order_release); }
} // namespace tunehall

void service_impl_helper::release_object_delayed(service_base* object) {
    tunehall_core* c = tunehall::core();
    if (tunehall::services_initialised() && c && !c->may_destroy_objects_now()) {
        c->destroy_object_later(object);
        return;
    }
    delete object;
}

void tunehall_bug_check(const char* text) { uBugCheck(text); }
