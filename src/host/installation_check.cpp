// Tells the host whether the component sits under the file name it was built for; a renamed
// file is reported to the crash log, where support finds it.

#include <tunehall/component.h>
#include <tunehall/shared.h>

#include "host/module_info.h"
#include "host/registration.h"

namespace {

class installation_check_impl : public installation_check {
public:
    bool is_installed_correctly() override {
        try {
            std::string actual = sonatag2::module_file_name();
            if (actual == sonatag2::built_in_file_name) return true;
            std::string text = std::string("Component rename detected: ") + sonatag2::built_in_file_name + " >> " + actual;
            uPrintCrashInfo_OnEvent(text.c_str(), TUNEHALL_NUL_TERMINATED);
        } catch (...) {
            // Answering is all this check may do; a failure to report is not the host's problem.
        }
        return false;
    }
};

sonatag2::service_factory_t<installation_check_impl, installation_check> g_factory(sonatag2::g_service_list);

} // namespace
