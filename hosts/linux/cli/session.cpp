#include "cli/session.h"

#include <hostkit/file_util.h>

namespace tessellon_cli {

session::session(const global_options& globals) {
    hostkit::host_options options;
    options.profile = hostkit::default_profile(globals.profile);
    host_ = std::make_unique<hostkit::host>(options);
    std::filesystem::path component = globals.component.empty() ? default_component_path()
                                                                : hostkit::utf8_path(globals.component);
    component_ = &host_->load_component(hostkit::path_utf8(component));
}

session::~session() = default;

} // namespace tessellon_cli
