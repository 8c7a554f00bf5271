#include "host/component_client.h"

#include "config/legacy_config.h"
#include "host/module_info.h"
#include "ui/open_dialogs.h"

namespace sonatag2 {

std::uint32_t component_client::get_version() { return tunehall_client_version; }

service_factory* component_client::get_service_list() { return g_service_list; }

void component_client::get_config(stream_writer& out, abort_source& abort) {
    legacy_config_export(cfg_legacy_record::list_head(), out, abort);
}

void component_client::set_config(stream_reader& in, abort_source& abort) {
    legacy_config_import(cfg_var_base::list_head(), in, abort);
}

void component_client::set_library_path(const char* path) {
    std::lock_guard lock(lock_);
    path_ = path ? path : "";
}

void component_client::services_init(bool initialised) {
    // Dialogs still open when the host shuts down go first, while the services they use exist.
    if (!initialised) open_dialogs::close_all();
    tunehall::set_services_initialised(initialised);
}

bool component_client::is_debug() { return false; }

void component_client::set_host(tunehall_core* core, module_handle module) {
    tunehall::set_core(core);
    std::lock_guard lock(lock_);
    module_ = module;
}

module_handle component_client::module() const {
    std::lock_guard lock(lock_);
    return module_;
}

std::string component_client::path() const {
    std::lock_guard lock(lock_);
    return path_;
}

component_client& client() {
    static component_client instance;
    return instance;
}

module_handle this_module() { return client().module(); }

std::string module_path() { return client().path(); }

std::string module_file_name() {
    std::string path = client().path();
    std::size_t cut = path.find_last_of("/\\");
    return cut == std::string::npos ? path : path.substr(cut + 1);
}

} // namespace sonatag2
