#include "cli/command_line.h"

#include <cstdlib>

#include <unistd.h>

namespace tessellon_cli {

invocation parse_globals(int argc, char** argv) {
    invocation inv;
    int i = 1;
    for (; i < argc; ++i) {
        std::string a = argv[i];
        auto value = [&](const char* name) -> std::string {
            if (i + 1 >= argc) throw usage_error{std::string(name) + " needs a value"};
            return argv[++i];
        };
        if (a == "--profile") inv.globals.profile = value("--profile");
        else if (a.rfind("--profile=", 0) == 0) inv.globals.profile = a.substr(10);
        else if (a == "--component") inv.globals.component = value("--component");
        else if (a == "--timeout") inv.globals.timeout_seconds = parse_timeout(value("--timeout"), "--timeout");
        else if (a.rfind("--timeout=", 0) == 0) inv.globals.timeout_seconds = parse_timeout(a.substr(10), "--timeout");
        else break;
    }
    for (; i < argc; ++i) inv.args.emplace_back(argv[i]);
    return inv;
}

long parse_timeout(const std::string& text, const std::string& what) {
    char* end = nullptr;
    const long seconds = text.empty() || text[0] == '-' ? 0 : std::strtol(text.c_str(), &end, 10);
    if (seconds < 1 || seconds > max_timeout_seconds || *end != '\0')
        throw usage_error{what + ": expected whole seconds from 1 to " + std::to_string(max_timeout_seconds) + ", got '" + text + "'"};
    return seconds;
}

std::filesystem::path default_component_path() {
    std::error_code ec;
    std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", ec);
    std::filesystem::path dir = ec ? std::filesystem::current_path() : self.parent_path();
    // Beside the program in the build folder; in an installed tree, in the component folder.
    std::filesystem::path beside = dir / "sonatag2.so";
    if (std::filesystem::exists(beside, ec)) return beside;
    return (dir / TESSELLON_COMPONENT_DIR_FROM_BIN / "sonatag2.so").lexically_normal();
}

} // namespace tessellon_cli
