#include "cli/session.h"

#include <cstdio>

#include <hostkit/file_util.h>

#include "host/entry.h"
#include "http/http_filesystem.h"

namespace tessellon_cli {

session::session(const global_options& globals, component_source source, bool write_tags, bool changes_settings) {
    hostkit::host_options options;
    options.profile = hostkit::default_profile(globals.profile);
    options.progress = &progress_;
    options.lock_profile = changes_settings;
    host_ = std::make_unique<hostkit::host>(options);
    if (const auto& copy = host_->config().damaged_copy(); !copy.empty())
        std::fprintf(stderr, "tessellon: the settings in %s were damaged and are kept as %s (the built-in settings hold "
                             "until a setting is changed)\n",
                     hostkit::path_utf8(host_->profile() / hostkit::host::config_file_name).c_str(), hostkit::path_utf8(copy).c_str());
    // --timeout, else the profile's choice, else the built-in default.
    long timeout = globals.timeout_seconds;
    if (timeout == 0) timeout = static_cast<long>(host_->config().get_int(timeout_setting_key, 0));
    const std::chrono::milliseconds deadline =
        timeout > 0 ? std::chrono::seconds(timeout) : http_request_policy{}.deadline;
    host_->services().add_instance(filesystem::class_guid, service_ptr(make_http_filesystem(deadline, &http_failures_).get()));
    if (write_tags) host_->services().add_instance(tag_update::class_guid, make_service<hostkit::tag_update_engine>(tag_files_));
    if (source == component_source::file || !globals.component.empty()) {
        std::filesystem::path file = globals.component.empty() ? default_component_path() : hostkit::utf8_path(globals.component);
        component_ = &host_->load_component(hostkit::path_utf8(file));
    } else {
        component_ = &host_->attach_component(&tunehall_get_interface, hostkit::path_utf8(default_component_path()));
    }
}

session::~session() = default;

} // namespace tessellon_cli
