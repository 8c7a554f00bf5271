// MusicBrainz among the host's online tagging sources: look up and review in the dialog, or
// look up and write at once.

#include <tunehall/tagging_source.h>

#include "host/registration.h"
#include "musicbrainz/lookup_task.h"

namespace {

class musicbrainz_source : public tagging_source {
public:
    const char* name() override { return "MusicBrainz"; }
    int icon_id() override { return 115; }
    double weight() override { return 1.0; }
    void lookup(const track_list& tracks, HWND parent, service_ref<tagging_done> done) override {
        start_musicbrainz_lookup(tracks, parent, /*interactive=*/true, std::move(done));
    }
    void lookup_write(const track_list& tracks, HWND parent, service_ref<tagging_done> done) override {
        start_musicbrainz_lookup(tracks, parent, /*interactive=*/false, std::move(done));
    }
};

sonatag2::service_factory_t<musicbrainz_source, tagging_source> g_source(sonatag2::g_service_list);

} // namespace
