// The tagger dialog as the service the lookup calls when it found something.

#include "cddb/lookup_state.h"
#include "host/registration.h"
#include "tagger/tagger_controller.h"

namespace {

class tagger_dialog_opener : public tagger_dialog_factory {
public:
    void open(HWND parent, service_ref<lookup_state> state) override { open_tagger_dialog(parent, std::move(state)); }
};

sonatag2::service_factory_t<tagger_dialog_opener, tagger_dialog_factory> g_factory(sonatag2::g_service_list);

} // namespace
