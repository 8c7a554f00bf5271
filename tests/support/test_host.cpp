#include "support/test_host.h"

#include "host/entry.h"
#include "host/module_info.h"

namespace testing_support {

test_host::test_host(const test_host_options& options) : profile_("tessellon-profile") {
    hostkit::host_options h;
    h.profile = profile_.path();
    h.console_to_stderr = false;
    h.popups_to_stderr = false;
    h.window_list = false;  // tests that open dialogs register a window list of their own
    host_ = std::make_unique<hostkit::host>(h);
    if (options.attach_component) {
        std::string name = options.component_file_name.empty() ? sonatag2::built_in_file_name : options.component_file_name;
        host_->attach_component(&tunehall_get_interface, (profile_.path() / name).string());
    }
}

test_host::~test_host() { host_.reset(); }

} // namespace testing_support
