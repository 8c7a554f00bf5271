#pragma once
// A whole host: the registry with the host's own services (configuration store, console, core
// version, popups, threaded process, main-thread queue, local files) and the components it
// loaded. Platform hosts add their own services (HTTP, tracks, windows) before loading.

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "component_loader.h"
#include "config_store_file.h"
#include "console_log.h"
#include "main_queue.h"
#include "popups.h"
#include "profile_lock.h"
#include "registry.h"
#include "run_only_config.h"
#include "threaded_process_worker.h"
#include "window_list.h"

namespace hostkit {

struct host_options {
    std::filesystem::path profile;          // created when missing
    bool console_to_stderr = true;
    bool popups_to_stderr = true;
    progress_display* progress = nullptr;   // null: tasks run without a display
    // Writes an echoed console line or popup (without its newline); empty: straight to stderr.
    std::function<void(const std::string&)> echo_line = {};
    bool window_list = true;                 // register windows() as the modeless-window service
    // Settings changed during this run last for the run only (the profile's settings file is
    // read, never written), and the console is not logged to the profile either: a run like
    // this leaves the profile folder as it found it.
    bool leave_profile_alone = false;
    // Hold the profile's lock for the host's whole life, from before the settings are read:
    // for a run that changes settings, so that concurrent runs do not lose each other's changes.
    bool lock_profile = false;
};

class host {
public:
    explicit host(const host_options& options);
    ~host();
    host(const host&) = delete;
    host& operator=(const host&) = delete;

    registry& services() { return registry_; }
    main_queue& queue() { return queue_; }
    threaded_process_worker& tasks() { return *tasks_; }
    // The saved settings (the file), whatever the component is given.
    config_store_file& config() { return *config_; }
    console_log& console() { return *console_; }
    popup_recorder& popups() { return *popups_; }
    window_list& windows() { return *windows_; }
    const std::filesystem::path& profile() const { return profile_; }

    // Loads a component file and registers its services.
    loaded_component& load_component(const std::string& path);
    // Registers a component linked into this program (tests).
    loaded_component& attach_component(tunehall_get_interface_fn entry, const std::string& path);

    // The file name of the configuration store and of the console log in the profile.
    static constexpr const char* config_file_name = "config.tsc";
    static constexpr const char* log_file_name = "console.log";

private:
    std::filesystem::path profile_;
    std::unique_ptr<profile_lock> lock_;
    main_queue queue_;
    registry registry_;
    service_ref<config_store_file> config_;
    service_ref<console_log> console_;
    service_ref<popup_recorder> popups_;
    service_ref<threaded_process_worker> tasks_;
    service_ref<window_list> windows_;
    std::vector<std::unique_ptr<loaded_component>> components_;
};

// The profile folder: `explicit_dir` when given, else TESSELLON_PROFILE, else
// $XDG_CONFIG_HOME/tessellon, else ~/.config/tessellon (on Windows: %APPDATA%\Tessellon).
std::filesystem::path default_profile(const std::string& explicit_dir);

} // namespace hostkit
