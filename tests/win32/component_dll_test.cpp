// The real sonatag2.dll under Windows (Wine): loading through its entry, what it registers, and
// the installation check under its own name and under another one.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include <hostkit/file_util.h>
#include <hostkit/host.h>
#include <tunehall/component.h>
#include <tunehall/shared.h>

#include "support/temp_folder.h"

namespace {

std::filesystem::path module_dir() {
    wchar_t buffer[MAX_PATH];
    GetModuleFileNameW(nullptr, buffer, MAX_PATH);
    return std::filesystem::path(buffer).parent_path();
}

// A host in a fresh profile that loads the DLL at `path`.
struct dll_host {
    testing_support::temp_folder profile{"tessellon-win32"};
    std::unique_ptr<hostkit::host> host;
    explicit dll_host(const std::filesystem::path& path) {
        hostkit::host_options options;
        options.profile = profile.path();
        options.console_to_stderr = options.popups_to_stderr = false;
        host = std::make_unique<hostkit::host>(options);
        host->load_component(hostkit::path_utf8(path));
    }
};

bool installed_correctly() {
    auto checks = all_services<installation_check>();
    EXPECT_EQ(checks.size(), 1u);
    return !checks.empty() && checks[0]->is_installed_correctly();
}

} // namespace

TEST(component_dll, loads_through_its_entry_and_passes_the_installation_check_under_its_own_name) {
    dll_host h(module_dir() / SONATAG2_DLL_NAME);
    EXPECT_EQ(all_services<component_version>().size(), 1u);
    EXPECT_TRUE(installed_correctly());
}

TEST(component_dll, installation_check_reports_a_renamed_file) {
    testing_support::temp_folder folder("tessellon-renamed");  // outlives the loaded copy
    std::filesystem::copy_file(module_dir() / SONATAG2_DLL_NAME, folder / "sonatag2-copy.dll");
    // The copy imports the host's shared library from beside the program that loads it.
    std::filesystem::copy_file(module_dir() / "tunehall_shared.dll", folder / "tunehall_shared.dll");
    dll_host h(folder / "sonatag2-copy.dll");
    EXPECT_FALSE(installed_correctly());
    std::string events;
    uCrashInfo_Events(&events);
    EXPECT_NE(events.find("Component rename detected: sonatag2.dll >> sonatag2-copy.dll"), std::string::npos) << events;
}
