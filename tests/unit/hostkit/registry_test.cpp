// The service registry: lookup by class, the host's order, casts, and when objects die.

#include <gtest/gtest.h>

#include <tunehall/core.h>

#include "support/test_host.h"

using testing_support::test_host;

namespace {

class greeter : public service_base {
    TUNEHALL_SERVICE_CLASS(service_base, {0x6a1f0c2e, 0x1b7d, 0x4e55, {0x8c, 0x3a, 0x90, 0x2f, 0x11, 0x5d, 0x7e, 0x01}})
public:
    virtual std::string name() = 0;
};

class unregistered : public service_base {
    TUNEHALL_SERVICE_CLASS(service_base, {0x6a1f0c2e, 0x1b7d, 0x4e55, {0x8c, 0x3a, 0x90, 0x2f, 0x11, 0x5d, 0x7e, 0x02}})
};

class named_greeter : public greeter {
public:
    explicit named_greeter(std::string n, bool* destroyed = nullptr) : name_(std::move(n)), destroyed_(destroyed) {}
    ~named_greeter() override { if (destroyed_) *destroyed_ = true; }
    std::string name() override { return name_; }

private:
    std::string name_;
    bool* destroyed_;
};

std::vector<std::string> names() {
    std::vector<std::string> out;
    for (auto& g : all_services<greeter>()) out.push_back(g->name());
    return out;
}

} // namespace

TEST(registry, enumerates_services_of_a_class_in_registration_order) {
    test_host host;
    for (const char* n : {"first", "second", "third"}) host.add_service(greeter::class_guid, make_service<named_greeter>(n));
    EXPECT_EQ(names(), (std::vector<std::string>{"first", "second", "third"}));
    EXPECT_EQ(try_host_service<greeter>()->name(), "first");
    EXPECT_FALSE(try_host_service<unregistered>());
}

TEST(registry, casts_between_interfaces_of_one_object) {
    service_ptr base = make_service<named_greeter>("x");
    service_base* out = nullptr;
    EXPECT_TRUE(base->service_query(out, greeter::class_guid));
    ASSERT_NE(out, nullptr);
    out->service_release();
    EXPECT_FALSE(base->service_query(out, unregistered::class_guid));
    EXPECT_EQ(service_cast<greeter>(base)->name(), "x");
}

TEST(registry_death, a_missing_required_service_or_a_failed_cast_is_a_fatal_internal_error) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            test_host host;
            host_service<unregistered>();
        },
        "Service not found");
    EXPECT_DEATH(service_cast<unregistered>(make_service<named_greeter>("x")), "forced cast failure");
}

TEST(registry, last_release_inside_a_host_callback_waits_for_the_host_while_services_are_initialised) {
    test_host host;  // the attached component has its services initialised
    bool destroyed = false;
    service_ref<greeter> g = make_service<named_greeter>("late", &destroyed);
    bool checked_inside = false;
    host.host().queue().post([&] {
        g.reset();
        checked_inside = true;
        EXPECT_FALSE(destroyed) << "destroyed inside the host's own callback";
    });
    host.host().queue().run_pending();
    EXPECT_TRUE(checked_inside);
    EXPECT_TRUE(destroyed);
}

TEST(registry, last_release_destroys_at_once_while_services_are_not_initialised) {
    test_host host;
    tunehall::set_services_initialised(false);  // as the host says before unloading
    bool destroyed = false;
    service_ref<greeter> g = make_service<named_greeter>("now", &destroyed);
    host.host().queue().post([&] {
        g.reset();
        EXPECT_TRUE(destroyed);
    });
    host.host().queue().run_pending();
    EXPECT_TRUE(destroyed);
    tunehall::set_services_initialised(true);
}
