#include "host.h"

#include <cstdlib>

#include <tunehall/core_version.h>

#include "file_util.h"
#include "local_filesystem.h"

namespace hostkit {

namespace {
class version_info : public core_version {
public:
    const char* get_version_string() override { return "Tunehall 1.0"; }
    const char* get_version_as_text() override { return "1.0"; }
};
} // namespace

host::host(const host_options& options) : profile_(options.profile), registry_(queue_) {
    std::error_code ec;
    std::filesystem::create_directories(profile_, ec);
    if (!std::filesystem::is_directory(profile_))
        throw tunehall_io::exception_io("Cannot create the profile folder " + path_utf8(profile_));
    registry_.set_profile_path(path_utf8(profile_));
    tunehall::set_core(&registry_);

    if (options.lock_profile) lock_ = std::make_unique<profile_lock>(profile_);
    config_ = make_service<config_store_file>(profile_ / config_file_name, options.lock_profile);
    console_ = make_service<console_log>(options.leave_profile_alone ? std::filesystem::path() : profile_ / log_file_name,
                                         options.console_to_stderr, options.echo_line);
    popups_ = make_service<popup_recorder>(options.popups_to_stderr, options.echo_line);
    tasks_ = make_service<threaded_process_worker>(queue_, options.progress);
    windows_ = make_service<window_list>();

    service_ptr settings = options.leave_profile_alone ? service_ptr(make_service<run_only_config>(config_).get())
                                                       : service_ptr(config_.get());
    registry_.add_instance(host_config_store::class_guid, settings);
    registry_.add_instance(console_receiver::class_guid, service_ptr(console_.get()));
    registry_.add_instance(popup_message_v3::class_guid, service_ptr(popups_.get()));
    registry_.add_instance(threaded_process::class_guid, service_ptr(tasks_.get()));
    if (options.window_list) registry_.add_instance(modeless_window_manager::class_guid, service_ptr(windows_.get()));
    registry_.add_instance(main_thread_queue::class_guid, service_ptr(queue_.service().get()));
    registry_.add_instance(core_version::class_guid, service_ptr(make_service<version_info>().get()));
    registry_.add_instance(filesystem::class_guid, service_ptr(make_service<local_filesystem>().get()));
}

host::~host() {
    tasks_->wait_idle();
    queue_.run_pending();
    components_.clear();
    if (tunehall::core() == &registry_) tunehall::set_core(nullptr);
}

loaded_component& host::load_component(const std::string& path) {
    components_.push_back(std::make_unique<loaded_component>(registry_, path));
    return *components_.back();
}

loaded_component& host::attach_component(tunehall_get_interface_fn entry, const std::string& path) {
    components_.push_back(std::make_unique<loaded_component>(registry_, entry, path));
    return *components_.back();
}

std::filesystem::path default_profile(const std::string& explicit_dir) {
    if (!explicit_dir.empty()) return utf8_path(explicit_dir);
    if (const char* env = std::getenv("TESSELLON_PROFILE"); env && *env) return utf8_path(env);
#ifdef _WIN32
    if (const char* appdata = std::getenv("APPDATA"); appdata && *appdata) return utf8_path(appdata) / "Tessellon";
    return std::filesystem::path("Tessellon");
#else
    if (const char* xdg = std::getenv("XDG_CONFIG_HOME"); xdg && *xdg) return utf8_path(xdg) / "tessellon";
    const char* home = std::getenv("HOME");
    return utf8_path(home && *home ? home : ".") / ".config" / "tessellon";
#endif
}

} // namespace hostkit
