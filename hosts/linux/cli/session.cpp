#include "cli/session.h"

#include <cstdio>

#include <hostkit/file_util.h>

#include "host/entry.h"
#include "http/http_filesystem.h"

namespace tessellon_cli {

int id3v2_version_of(hostkit::config_store_file& config) { return config.get_int(id3v2_version_key, 4) == 3 ? 3 : 4; }

session::session(const global_options& globals, component_source source, settings_use settings) {
    hostkit::host_options options;
    options.profile = hostkit::default_profile(globals.profile);
    options.progress = &progress_;
    options.leave_profile_alone = settings == settings_use::this_run;
    // A run that changes settings holds the profile's lock from before they are read, so that
    // concurrent runs do not lose each other's changes.
    options.lock_profile = settings == settings_use::saved;
    // Console lines and messages go above the progress bar, not into its line.
    options.echo_line = [this](const std::string& line) { progress_.print_line(line); };
    host_ = std::make_unique<hostkit::host>(options);
    if (const auto& copy = host_->config().damaged_copy(); !copy.empty())
        std::fprintf(stderr, "tessellon: the settings in %s were damaged and are kept as %s (the built-in settings hold "
                             "until a setting is changed)\n",
                     hostkit::path_utf8(host_->profile() / hostkit::host::config_file_name).c_str(), hostkit::path_utf8(copy).c_str());
    tag_files_.set_options({id3v2_version_of(host_->config())});
    // --timeout, else the profile's choice, else the built-in default.
    long timeout = globals.timeout_seconds;
    if (timeout == 0) timeout = static_cast<long>(host_->config().get_int(timeout_setting_key, 0));
    const std::chrono::milliseconds deadline =
        timeout > 0 ? std::chrono::seconds(timeout) : http_request_policy{}.deadline;
    host_->services().add_instance(filesystem::class_guid, service_ptr(make_http_filesystem(deadline, &http_failures_).get()));
    tag_files_.set_journal(std::make_unique<linux_host::undo_journal>(options.profile / "journal"));
    engine_ = make_service<hostkit::tag_update_engine>(tag_files_);
    host_->services().add_instance(tag_update::class_guid, engine_);
    if (source == component_source::file || !globals.component.empty()) {
        std::filesystem::path file = globals.component.empty() ? default_component_path() : hostkit::utf8_path(globals.component);
        component_ = &host_->load_component(hostkit::path_utf8(file));
    } else {
        component_ = &host_->attach_component(&tunehall_get_interface, hostkit::path_utf8(default_component_path()));
    }
}

session::~session() = default;

} // namespace tessellon_cli
