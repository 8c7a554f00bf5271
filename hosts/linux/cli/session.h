#pragma once
// One run of the command line as a host: the profile, the host's services (files, HTTP,
// terminal progress) and the component.

#include <memory>

#include <hostkit/host.h>

#include "cli/command_line.h"
#include "file_tag_io.h"
#include "http/request_failures.h"
#include "terminal_progress.h"

namespace tessellon_cli {

class session {
public:
    // How the component comes in: its code linked into tessellon, attached through its entry
    // (the commands), or its file loaded with dlopen (`about`, and any --component FILE).
    enum class component_source { linked, file };

    // `write_tags` false: the host's tag update is left out (the caller registers its own, as
    // --dry-run does).
    // `changes_settings`: the command reads, changes and writes settings, so it holds the
    // profile's lock for its whole run (concurrent commands wait for each other).
    explicit session(const global_options& globals, component_source source = component_source::linked,
                     bool write_tags = true, bool changes_settings = false);
    ~session();

    hostkit::host& host() { return *host_; }
    hostkit::loaded_component& component() { return *component_; }
    // Every HTTP request of this run that failed, by server.
    const request_failures& http_failures() const { return http_failures_; }

private:
    request_failures http_failures_;
    linux_host::terminal_progress progress_;
    linux_host::file_tag_io tag_files_;
    std::unique_ptr<hostkit::host> host_;
    hostkit::loaded_component* component_ = nullptr;
};

} // namespace tessellon_cli
