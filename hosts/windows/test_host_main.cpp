// The Windows test host as a program: a stand-in for the player to try the component by hand
// under Wine.
//
//   tunehall_test_host.exe [--profile DIR] [--manifest FILE] [--component FILE] [--about]
//
// --about prints what the component registers and ends; otherwise the main window lists the
// manifest's tracks, and its menu runs the component's commands on the selected ones.

#include <cstdio>
#include <string>

#include <hostkit/file_util.h>
#include <tunehall/component.h>
#include <tunehall/core.h>

#include "host_text.h"
#include "test_host.h"

int wmain(int argc, wchar_t** argv) {
    std::string component = "sonatag2.dll", profile, manifest;
    bool about = false;
    for (int i = 1; i < argc; ++i) {
        std::wstring arg = argv[i];
        auto value = [&]() { return i + 1 < argc ? winhost::narrow(argv[++i]) : std::string(); };
        if (arg == L"--profile") profile = value();
        else if (arg == L"--manifest") manifest = value();
        else if (arg == L"--component") component = value();
        else if (arg == L"--about") about = true;
        else component = winhost::narrow(arg);  // the component's path alone, as before
    }
    try {
        winhost::test_host_options options;
        options.profile = hostkit::default_profile(profile);
        if (!manifest.empty()) options.manifest = hostkit::utf8_path(manifest);
        options.show_main_window = !about;
        options.console_to_stderr = true;
        winhost::test_host host(options);
        host.load_component(component);
        if (about) {
            for (auto& v : all_services<component_version>())
                std::printf("%s %s\n", v->get_component_name(), v->get_component_version());
            for (auto& check : all_services<installation_check>())
                std::printf("installation check: %s\n", check->is_installed_correctly() ? "ok" : "failed");
            return 0;
        }
        return host.run();
    } catch (const std::exception& e) {
        std::fprintf(stderr, "%s\n", e.what());
        return 2;
    }
}
