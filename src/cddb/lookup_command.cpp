// Where a lookup starts: the context-menu command on the selection, and the "discora" tagging
// tool the host offers beside its other tagging sources.

#include <tunehall/menu_command.h>
#include <tunehall/tagging_source.h>

#include "cddb/lookup_task.h"
#include "host/registration.h"

namespace {

class lookup_menu_command : public menu_command {
public:
    std::size_t command_count() override { return 1; }
    const char* command_name(std::size_t) override { return "Get tags from discora"; }
    const char* command_group(std::size_t) override { return "Tagging"; }
    const char* command_description(std::size_t) override {
        return "Queries discora server for tags for a complete CD. Requires internet connection.";
    }
    void command_execute(std::size_t index, const track_list& selection, HWND parent) override {
        if (index == 0) start_lookup(selection, parent);
    }
};

// The same lookup for the host's tagging tools. The tool reports done when the tagger dialog
// opened.
class discora_tool : public tagging_source {
public:
    const char* name() override { return "discora"; }
    int icon_id() override { return 110; }
    double weight() override { return 1.0; }
    void lookup(const track_list& tracks, HWND parent, service_ref<tagging_done> done) override {
        start_lookup(tracks, parent, [done](tagging_outcome outcome) {
            if (done) done->on_outcome(outcome);
        });
    }
    // A CDDB match always goes through the dialog: there is no write-at-once form.
    void lookup_write(const track_list& tracks, HWND parent, service_ref<tagging_done> done) override {
        lookup(tracks, parent, std::move(done));
    }
};

sonatag2::service_factory_t<lookup_menu_command, menu_command> g_command(sonatag2::g_service_list);
sonatag2::service_factory_t<discora_tool, tagging_source> g_tool(sonatag2::g_service_list);

} // namespace
