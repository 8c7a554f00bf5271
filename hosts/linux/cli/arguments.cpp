#include "cli/arguments.h"

#include <cstdlib>

namespace tessellon_cli {

option_reader::option_reader(const arguments& args, std::set<std::string> flags, std::set<std::string> valued) {
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        // "-5" is a (bad) number for the command to refuse, not an option.
        if (a.size() < 2 || a[0] != '-' || a == "-" || (a[1] >= '0' && a[1] <= '9')) {
            positional_.push_back(a);
            continue;
        }
        if (a == "--") {
            positional_.insert(positional_.end(), args.begin() + static_cast<long>(i) + 1, args.end());
            break;
        }
        std::string name = a, val;
        bool inline_value = false;
        if (auto eq = a.find('='); eq != std::string::npos) {
            name = a.substr(0, eq);
            val = a.substr(eq + 1);
            inline_value = true;
        }
        if (flags.count(name)) {
            if (inline_value) throw usage_error{name + " takes no value"};
            given_.emplace_back(name, "");
        } else if (valued.count(name)) {
            if (!inline_value) {
                if (i + 1 >= args.size()) throw usage_error{name + " needs a value"};
                val = args[++i];
            }
            given_.emplace_back(name, val);
        } else {
            throw usage_error{"unknown option " + name};
        }
    }
}

bool option_reader::flag(const std::string& name) const {
    for (auto& [n, v] : given_)
        if (n == name) return true;
    return false;
}

std::optional<std::string> option_reader::value(const std::string& name) const {
    std::optional<std::string> out;
    for (auto& [n, v] : given_)
        if (n == name) out = v;
    return out;
}

std::vector<std::string> option_reader::values(const std::string& name) const {
    std::vector<std::string> out;
    for (auto& [n, v] : given_)
        if (n == name) out.push_back(v);
    return out;
}

std::vector<double> parse_lengths(const std::string& text) {
    std::vector<double> out;
    std::size_t start = 0;
    while (start <= text.size()) {
        std::size_t comma = text.find(',', start);
        std::string item = text.substr(start, comma == std::string::npos ? std::string::npos : comma - start);
        char* end = nullptr;
        double v = std::strtod(item.c_str(), &end);
        if (item.empty() || *end != '\0') throw usage_error{"--lengths: '" + item + "' is not a length in seconds"};
        out.push_back(v);
        if (comma == std::string::npos) break;
        start = comma + 1;
    }
    return out;
}

} // namespace tessellon_cli
