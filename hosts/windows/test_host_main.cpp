// The Windows test host: loads sonatag2.dll as the player does and reports what it registers.
// Tests drive the same host kit directly; this program is for starting it by hand under Wine.

#include <cstdio>
#include <string>

#include <hostkit/host.h>
#include <tunehall/component.h>
#include <tunehall/shared.h>

int wmain(int argc, wchar_t** argv) {
    std::wstring wide = argc > 1 ? argv[1] : L"sonatag2.dll";
    int n = WideCharToMultiByte(CP_UTF8, 0, wide.c_str(), -1, nullptr, 0, nullptr, nullptr);
    std::string path(static_cast<std::size_t>(n > 0 ? n - 1 : 0), '\0');
    WideCharToMultiByte(CP_UTF8, 0, wide.c_str(), -1, path.data(), n, nullptr, nullptr);
    try {
        hostkit::host_options options;
        options.profile = hostkit::default_profile("");
        hostkit::host host(options);
        hostkit::loaded_component& component = host.load_component(path);
        for (auto& v : all_services<component_version>())
            std::printf("%s %s\n", v->get_component_name(), v->get_component_version());
        std::printf("interface version: %u\n", component.client().get_version());
        for (auto& check : all_services<installation_check>())
            std::printf("installation check: %s\n", check->is_installed_correctly() ? "ok" : "failed");
        return 0;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "%s\n", e.what());
        return 2;
    }
}
