#pragma once
// One run of the command line as a host: the profile, the host's services (files, HTTP,
// terminal progress) and the loaded component.

#include <memory>

#include <hostkit/host.h>

#include "cli/command_line.h"

namespace tessellon_cli {

class session {
public:
    explicit session(const global_options& globals);
    ~session();

    hostkit::host& host() { return *host_; }
    hostkit::loaded_component& component() { return *component_; }

private:
    std::unique_ptr<hostkit::host> host_;
    hostkit::loaded_component* component_ = nullptr;
};

} // namespace tessellon_cli
