#pragma once
// Reading a command's own options: flags, options with a value (repeatable or not), and the
// positional arguments left over. Unknown options are bad usage.

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "cli/commands.h"

namespace tessellon_cli {

class option_reader {
public:
    // `flags` take no value, `valued` take one ("--x V" or "--x=V").
    option_reader(const arguments& args, std::set<std::string> flags, std::set<std::string> valued);

    bool flag(const std::string& name) const;
    std::optional<std::string> value(const std::string& name) const;
    // Every value of a repeatable option, in order.
    std::vector<std::string> values(const std::string& name) const;
    const std::vector<std::string>& positional() const { return positional_; }

private:
    std::vector<std::pair<std::string, std::string>> given_;
    std::vector<std::string> positional_;
};

// "180.0,240.2,300.5" as seconds; usage_error naming the bad item.
std::vector<double> parse_lengths(const std::string& text);

} // namespace tessellon_cli
