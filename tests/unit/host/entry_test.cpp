// The component as the host first meets it: the entry, the client object, what it registers,
// and the installation check.

#include <gtest/gtest.h>

#include <tunehall/component.h>
#include <tunehall/shared.h>

#include "host/entry.h"
#include "host/module_info.h"
#include "support/test_host.h"

using testing_support::test_host;
using testing_support::test_host_options;

namespace {

class fake_core : public tunehall_core {
public:
    std::size_t service_count(const GUID&) override { return 0; }
    service_ptr service_instance(const GUID&, std::size_t) override { return {}; }
    bool may_destroy_objects_now() override { return true; }
    void destroy_object_later(service_base*) override {}
    bool is_main_thread() override { return true; }
    const char* profile_path() override { return ""; }
};

} // namespace

TEST(entry, returns_the_same_client_every_time_and_keeps_the_last_arguments) {
    tunehall_core* before = tunehall::core();
    fake_core first, second;
    int handle_a = 0, handle_b = 0;
    tunehall_client* a = tunehall_get_interface(&first, &handle_a);
    tunehall_client* b = tunehall_get_interface(&second, &handle_b);
    EXPECT_EQ(a, b);
    EXPECT_EQ(tunehall::core(), &second);
    EXPECT_EQ(sonatag2::this_module(), static_cast<module_handle>(&handle_b));
    tunehall_get_interface(before, nullptr);
}

TEST(entry, client_keeps_the_module_path_and_its_file_name) {
    test_host host;
    tunehall_client* c = tunehall_get_interface(tunehall::core(), nullptr);
    c->set_library_path("C:\\Program Files\\Tunehall\\components\\sonatag2.dll");
    EXPECT_EQ(sonatag2::module_file_name(), "sonatag2.dll");
    c->set_library_path("/usr/lib/tessellon/sonatag2.so");
    EXPECT_EQ(sonatag2::module_file_name(), "sonatag2.so");
    EXPECT_EQ(sonatag2::module_path(), "/usr/lib/tessellon/sonatag2.so");
}

// The installation check's registration is seen by the test below, which finds exactly one.
TEST(entry, component_registers_its_identity) {
    test_host host;
    auto versions = all_services<component_version>();
    ASSERT_EQ(versions.size(), 1u);
    EXPECT_NE(std::string(versions[0]->get_about_message()), "");
}

TEST(entry, legacy_export_of_a_component_without_legacy_records_writes_nothing) {
    test_host host;
    tunehall_client* c = tunehall_get_interface(tunehall::core(), nullptr);
    abort_source_dummy abort;
    auto path = host.profile() / "legacy.bin";
    {
        file_ptr out = filesystem::g_open(path.string().c_str(), filesystem::open_mode::write_new, abort);
        c->get_config(*out, abort);
    }
    EXPECT_EQ(std::filesystem::file_size(path), 0u);
}

TEST(installation_check, compares_the_file_name_byte_for_byte_and_reports_a_rename) {
    for (const char* file_name : {sonatag2::built_in_file_name, "sonatag2-old.so", "SONATAG2.SO", "sonatag2.dll.bak"}) {
        SCOPED_TRACE(file_name);
        const bool expected = file_name == std::string(sonatag2::built_in_file_name);
        test_host_options options;
        options.component_file_name = file_name;
        test_host host(options);
        std::string before;
        uCrashInfo_Events(&before);

        auto checks = all_services<installation_check>();
        ASSERT_EQ(checks.size(), 1u);
        EXPECT_EQ(checks[0]->is_installed_correctly(), expected);

        std::string after;
        uCrashInfo_Events(&after);
        EXPECT_EQ(after.substr(before.size()),
                  expected ? "" : std::string("Component rename detected: ") + sonatag2::built_in_file_name + " >> " + file_name + "\n");
    }
}
