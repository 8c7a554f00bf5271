#include "tagger_test_support.h"

#include <stdexcept>

#include <hostkit/plain_track.h>
#include <tunehall/core.h>
#include <tunehall/main_thread.h>

#include "config/settings.h"

namespace tagger_testing {

void recording_tag_update::update_async(const track_list& tracks, service_ref<tag_update_filter> filter, HWND parent,
                                        std::uint32_t flags, service_ref<completion_notification> done,
                                        std::uint32_t task_id) {
    calls_.push_back({tracks, parent, flags, task_id});
    for (const track_ref& track : tracks) {
        tag_record tags = files_[track.get()];
        if (filter->apply(track, tags)) files_[track.get()] = tags;
    }
    done_ = std::move(done);
}

void recording_tag_update::complete(std::uint32_t result, std::optional<std::uint32_t> task_id) {
    ASSERT_FALSE(calls_.empty()) << "no update was started";
    std::uint32_t id = task_id.value_or(calls_.back().task_id);
    host_service<main_thread_queue>()->post([done = done_, id, result] {
        if (done) done->on_completion(id, result);
    });
}

disc_record make_record(const match& m) {
    disc_record r;
    r.set_field(disc_record::category, m.category.c_str());
    r.set_field(disc_record::discid, "8608460b");
    r.set_field(disc_record::dtitle, m.dtitle.c_str());
    r.set_field(disc_record::dyear, m.year.c_str());
    r.set_field(disc_record::dgenre, m.genre.c_str());
    r.set_field(disc_record::extd, m.disc_comment.c_str());
    r.set_track_count(m.titles.size());
    for (std::size_t i = 0; i < m.titles.size(); ++i) {
        r.set_track_field(i, disc_record::ttitle, m.titles[i].c_str());
        if (i < m.comments.size()) r.set_track_field(i, disc_record::extt, m.comments[i].c_str());
    }
    r.set_various_artists(m.various);
    return r;
}

track_list make_tracks(std::size_t count) {
    track_list tracks;
    for (std::size_t i = 0; i < count; ++i)
        tracks.push_back(hostkit::make_plain_track("/music/album/" + std::to_string(i + 1) + ".flac", 180.0 + static_cast<double>(i)));
    return tracks;
}

service_ref<lookup_state> make_lookup(std::size_t track_count,
                                      const std::vector<std::pair<std::string, std::vector<match>>>& servers) {
    auto state = make_service<lookup_state>(make_tracks(track_count));
    for (auto& [label, matches] : servers) {
        server_result result{label, {}};
        for (auto& m : matches) result.records.push_back(make_record(m));
        state->results.push_back(std::move(result));
    }
    return state;
}

match numbered_match(const std::string& dtitle, std::size_t count, const std::string& category) {
    match m;
    m.category = category;
    m.dtitle = dtitle;
    for (std::size_t i = 0; i < count; ++i) m.titles.push_back("Title " + std::to_string(i + 1));
    return m;
}

tagger_test::tagger_test() {
    host.add_service(modeless_window_manager::class_guid, windows);
    host.add_service(preferences_window::class_guid, preferences);
    host.add_service(tag_update::class_guid, updates);
    // The setting outlives a host in this process: start from "keep", put the old value back after.
    wipe_before_ = cfg_wipe_existing_tags.get();
    cfg_wipe_existing_tags.set(0);
}

tagger_test::~tagger_test() {
    for (auto& window : windows->open())
        if (auto* view = headless_view::from_handle(window.handle)) view->close();
    cfg_wipe_existing_tags.set(wipe_before_);
}

headless_view& tagger_test::open(service_ref<lookup_state> state) {
    auto factories = all_services<tagger_dialog_factory>();
    if (factories.empty()) throw std::logic_error("no tagger dialog factory registered");
    std::size_t before = windows->open().size();
    factories.front()->open(nullptr, std::move(state));
    auto now = windows->open();
    if (now.size() != before + 1) throw std::logic_error("the dialog did not reach the window list");
    headless_view* view = headless_view::from_handle(now.back().handle);
    if (!view) throw std::logic_error("the window list got no live dialog window");
    return *view;
}

bool tagger_test::closed(HWND window) const {
    return !windows->is_open(window) && headless_view::from_handle(window) == nullptr;
}

std::vector<std::string> column_texts(const headless_view& view, int column) {
    std::vector<std::string> out;
    for (std::size_t r = 0, n = view.list_row_count(tracks); r < n; ++r) out.push_back(view.list_get_cell(tracks, r, column));
    return out;
}

std::vector<std::pair<std::string, std::vector<std::string>>> fields_of(const tag_record& tags) {
    std::vector<std::pair<std::string, std::vector<std::string>>> out;
    for (std::size_t f = 0; f < tags.field_count(); ++f) {
        std::vector<std::string> values;
        for (std::size_t v = 0; v < tags.value_count(f); ++v) values.push_back(tags.value(f, v));
        out.emplace_back(tags.field_name(f), std::move(values));
    }
    return out;
}

} // namespace tagger_testing
