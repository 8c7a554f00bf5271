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

// The ID3v2 version MP3 and WAV files are written with (3 or 4; 4 when not set), kept in the
// profile's configuration store under this key.
inline constexpr const char* id3v2_version_key = "tessellon.id3v2_version";
int id3v2_version_of(hostkit::config_store_file& config);

class session {
public:
    // How the component comes in: its code linked into tessellon, attached through its entry
    // (the commands), or its file loaded with dlopen (`about`, and any --component FILE).
    enum class component_source { linked, file };

    // Only the settings commands change what later runs do; every other command leaves the
    // profile's settings (and log) as it found them, whatever boxes its dialogs click.
    enum class settings_use { this_run, saved };

    explicit session(const global_options& globals, component_source source = component_source::linked,
                     settings_use settings = settings_use::this_run);
    ~session();

    hostkit::host& host() { return *host_; }
    // The host's tag update, journaled in the profile's `journal` folder.
    hostkit::tag_update_engine& tag_update() { return *engine_; }
    linux_host::file_tag_io& tag_files() { return tag_files_; }
    hostkit::loaded_component& component() { return *component_; }
    // Every HTTP request of this run that failed, by server.
    const request_failures& http_failures() const { return http_failures_; }

private:
    request_failures http_failures_;
    linux_host::terminal_progress progress_;
    linux_host::file_tag_io tag_files_;
    std::unique_ptr<hostkit::host> host_;
    service_ref<hostkit::tag_update_engine> engine_;
    hostkit::loaded_component* component_ = nullptr;
};

} // namespace tessellon_cli
