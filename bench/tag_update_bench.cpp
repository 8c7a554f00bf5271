// Tagging a 20-file FLAC album. Ours: the host's asynchronous tag update on TagLib-backed files,
// handed each track's prepared tags as the tagger hands them (wipe mode), the main-thread queue
// run until the completion arrives. Peer: a plain TagLib loop writing the same prepared fields to
// the same files. Both start from tags prepared before timing; the tagger's own preparation
// (from a match to per-track tags) is timed apart. Before timing, both are checked to leave the
// same tags in the files, as an independent reader prints them.

#include <cstdio>
#include <exception>
#include <filesystem>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>


#include <benchmark/benchmark.h>
#include <taglib/flacfile.h>
#include <taglib/xiphcomment.h>

#include <hostkit/tag_update_engine.h>

#include "audio/file_track.h"
#include "cddb/disc_record.h"
#include "file_tag_io.h"
#include "support/audio_files.h"
#include "support/temp_folder.h"
#include "support/test_host.h"
#include "tag_update_reporter.h"
#include "tagger/tag_sets.h"
#include "tagger/tag_writer.h"

namespace {

namespace fs = std::filesystem;
using namespace testing_support;

constexpr std::size_t album_tracks = 20;
constexpr double track_seconds = 3.0;
// The values a tagger write sets per track of this album: album, date, genre, artist, title,
// track number, total tracks and two comments (the disc's and the track's).
constexpr std::size_t values_per_track = 9;
const std::string group = "tag_update/" + std::to_string(album_tracks) + "_flac/";

// The album as a CDDB match. The two variants differ in every title, so that each pass changes
// every file: the engine skips a file whose tags it finds unchanged, and a pass that wrote
// nothing would time nothing.
disc_record album_record(const std::string& title_suffix) {
    disc_record record;
    record.set_field(disc_record::dtitle, "The Bench Ensemble / Twenty Short Pieces");
    record.set_field(disc_record::dyear, "2026");
    record.set_field(disc_record::dgenre, "Ambient");
    record.set_field(disc_record::extd, "Recorded for the tag update benchmark");
    record.set_track_count(album_tracks);
    for (std::size_t i = 0; i < album_tracks; ++i) {
        std::string number = std::to_string(i + 1);
        record.set_track_field(i, disc_record::ttitle, ("Piece " + number + " " + title_suffix).c_str());
        record.set_track_field(i, disc_record::extt, ("Take " + number).c_str());
    }
    return record;
}

// The Vorbis comment key a plain TagLib program writes for each field of a tagger write.
constexpr std::pair<std::string_view, const char*> vorbis_keys[] = {
    {"album", "ALBUM"},
    {"date", "DATE"},
    {"genre", "GENRE"},
    {"artist", "ARTIST"},
    {"title", "TITLE"},
    {"tracknumber", "TRACKNUMBER"},
    {"totaltracks", "TRACKTOTAL"},
    {"comment", "COMMENT"},
};

using vorbis_fields = std::vector<std::pair<std::string, std::string>>;

vorbis_fields vorbis_fields_of(const tag_record& tags) {
    vorbis_fields fields;
    std::size_t values = 0;
    std::string names;
    for (std::size_t f = 0; f < tags.field_count(); ++f) {
        const char* key = nullptr;
        for (const auto& [name, vorbis] : vorbis_keys)
            if (tags.field_name(f) == name) key = vorbis;
        names += " " + tags.field_name(f);
        if (!key) throw std::runtime_error("no Vorbis key for the field \"" + tags.field_name(f) + "\"");
        for (std::size_t v = 0; v < tags.value_count(f); ++v, ++values) fields.emplace_back(key, tags.value(f, v));
    }
    if (values != values_per_track)
        throw std::runtime_error("a track's tag set has " + std::to_string(values) + " values, not " +
                                 std::to_string(values_per_track) + ", in the fields" + names);
    return fields;
}

// What the tagger's filter does with its prepared tags in wipe mode, with the tags prepared once,
// before timing, instead of on every update.
class prepared_filter : public tag_update_filter {
public:
    prepared_filter(const track_list& tracks, const std::vector<tag_record>& sets) {
        for (std::size_t i = 0; i < tracks.size(); ++i) sets_.insert_or_assign(tracks[i].get(), sets[i]);
    }
    bool apply(const track_ref& track, tag_record& tags) override {
        auto it = sets_.find(track.get());
        if (it == sets_.end()) return false;
        apply_prepared_tags(tags, it->second, true);
        return true;
    }

private:
    std::map<const track_handle*, tag_record> sets_;
};

class recorded_completion : public completion_notification {
public:
    void on_completion(std::uint32_t task_id, std::uint32_t result) override {
        arrived = true;
        id = task_id;
        code = result;
    }
    bool arrived = false;
    std::uint32_t id = 0;
    std::uint32_t code = 0;
};

// The album, the host that updates it, and the tags of both variants. Made once, before any
// timing; it must outlive the run.
class tag_update_suite {
public:
    tag_update_suite() {
        std::vector<fs::path> paths =
            make_album(scratch_.path(), std::vector<double>(album_tracks, track_seconds), audio_format::flac);
        for (const fs::path& p : paths) {
            files_.push_back(p.string());
            tracks_.push_back(make_file_track(p.string()));
        }
        host_.add_service(tag_update::class_guid, make_service<hostkit::tag_update_engine>(io_));
        for (int variant = 0; variant < 2; ++variant) {
            records_[variant] = album_record(variant == 0 ? "a" : "b");
            tag_sets_[variant] = build_track_tag_sets(records_[variant], album_tracks);
            filters_[variant] = make_service<prepared_filter>(tracks_, tag_sets_[variant]);
            for (const tag_record& tags : tag_sets_[variant]) peer_fields_[variant].push_back(vorbis_fields_of(tags));
        }
        check_both_write_the_same();
    }

    void register_benchmarks() {
        auto add = [this](const std::string& name, void (tag_update_suite::*body)(benchmark::State&)) {
            benchmark::RegisterBenchmark((group + name).c_str(), [this, body](benchmark::State& state) {
                (this->*body)(state);
            })
                // Ours runs on the host's worker thread: only the process's CPU time sees it.
                ->MeasureProcessCPUTime()
                ->Unit(benchmark::kMillisecond);
        };
        add("ours", &tag_update_suite::ours);
        add("taglib", &tag_update_suite::taglib);
        add("tagger_write", &tag_update_suite::tagger_write);
        add("read_tags_only", &tag_update_suite::read_tags_only);
        add("write_tags_only", &tag_update_suite::write_tags_only);
        add("empty_update", &tag_update_suite::empty_update);
    }

    static std::vector<std::string> part_names() {
        return {group + "tagger_write", group + "read_tags_only", group + "write_tags_only", group + "empty_update"};
    }

private:
    // Starts an update with `start`, waits for the completion, then joins the finished worker so
    // that threads do not pile up over the run.
    template <typename Start>
    void run_update(Start start) {
        auto done = make_service<recorded_completion>();
        start(done);
        host_.run_until([&done] { return done->arrived; });
        host_.host().tasks().wait_idle();
        if (done->id != tagger_update_task_id || done->code != completion_notification::result_success) {
            std::string why = host_.popups().empty() ? "" : ": " + host_.popups().back().message;
            throw std::runtime_error("the host's tag update did not succeed (result " + std::to_string(done->code) +
                                     ")" + why);
        }
    }

    // The host's update of the album with one variant's prepared tags.
    void update(const track_list& tracks, const service_ref<tag_update_filter>& filter) {
        run_update([&](const service_ref<completion_notification>& done) {
            host_service<tag_update>()->update_async(tracks, filter, nullptr, 0, done, tagger_update_task_id);
        });
    }

    void write_ours(int variant) { update(tracks_, filters_[variant]); }

    // The tagger's write as the dialog starts it: the tags prepared from the match, then the
    // host's update.
    void write_tagger(int variant) {
        run_update([&](const service_ref<completion_notification>& done) {
            start_tag_update(records_[variant], tracks_, true, nullptr, done);
        });
    }

    void write_peer(int variant) {
        for (std::size_t i = 0; i < files_.size(); ++i) {
            TagLib::FLAC::File file(files_[i].c_str());
            if (!file.isValid()) throw std::runtime_error("TagLib cannot open " + files_[i]);
            TagLib::Ogg::XiphComment* comment = file.xiphComment(true);
            comment->removeAllFields();
            for (const auto& [key, value] : peer_fields_[variant][i])
                comment->addField(key, TagLib::String(value, TagLib::String::UTF8), false);
            if (!file.save()) throw std::runtime_error("TagLib cannot save " + files_[i]);
        }
    }

    std::vector<std::vector<std::string>> tag_lines() const {
        std::vector<std::vector<std::string>> lines;
        for (const std::string& file : files_) lines.push_back(independent_tag_lines(file));
        return lines;
    }

    // Timing two writers is only a comparison if they write the same thing. Each pass writes the
    // variant the files do not hold, so every reading follows a real write: ours leaves a file
    // that already holds its tags alone, and then its reading would show the other's work.
    void check_both_write_the_same() {
        write_ours(0);
        auto ours_a = tag_lines();
        write_peer(1);
        auto peer_b = tag_lines();
        write_peer(0);
        auto peer_a = tag_lines();
        take_files_as_they_are();
        write_ours(1);
        auto ours_b = tag_lines();
        on_disk_ = 1;
        if (ours_a != peer_a || ours_b != peer_b)
            throw std::runtime_error("ours and the plain TagLib loop leave different tags in the files");
        for (int variant = 0; variant < 2; ++variant) {
            const auto& lines = variant == 0 ? ours_a : ours_b;
            for (std::size_t i = 0; i < files_.size(); ++i) {
                std::string title = std::string("TITLE=") + tag_sets_[variant][i].first_value("title");
                bool titled = false;
                for (const std::string& l : lines[i]) titled = titled || l == title;
                if (lines[i].size() != values_per_track || !titled)
                    throw std::runtime_error(files_[i] + " does not hold the " + std::to_string(values_per_track) +
                                             " values written, with \"" + title + "\"");
            }
        }
    }

    // The update refuses a file changed by another writer since the lookup read it; after the
    // plain loop's writes the album is taken as a new lookup would find it (before timing).
    void take_files_as_they_are() {
        for (const track_ref& track : tracks_) note_own_write(track);
    }

    // Runs `write` once per iteration, each time with the variant not on disk, then checks that
    // the files hold the last variant written.
    template <typename Write>
    void alternate(benchmark::State& state, Write write) {
        try {
            take_files_as_they_are();
            for (auto _ : state) {
                int next = 1 - on_disk_;
                write(next);
                on_disk_ = next;
            }
            for (std::size_t i = 0; i < tracks_.size(); ++i) {
                const char* written = tag_sets_[on_disk_][i].first_value("title");
                const char* found = io_.read_tags(tracks_[i]).first_value("title");
                if (!found || std::string_view(found) != written)
                    throw std::runtime_error(files_[i] + " does not have the title last written, \"" +
                                             written + "\"");
            }
        } catch (const std::exception& e) {
            state.SkipWithError(e.what());
        }
    }

    void ours(benchmark::State& state) {
        alternate(state, [this](int variant) { write_ours(variant); });
    }
    void taglib(benchmark::State& state) {
        alternate(state, [this](int variant) { write_peer(variant); });
    }

    // Parts of ours, or around it, measured alone, to show where its time goes. The tagger's
    // whole write adds preparing the tags from the match to ours.
    void tagger_write(benchmark::State& state) {
        alternate(state, [this](int variant) { write_tagger(variant); });
    }

    // Per file, ours opens the file once (with its audio properties), reads its tags, and saves
    // through the same open file; these time reading alone and writing alone (which opens again).
    void read_tags_only(benchmark::State& state) {
        try {
            for (auto _ : state)
                for (const track_ref& track : tracks_) benchmark::DoNotOptimize(io_.read_tags(track));
        } catch (const std::exception& e) {
            state.SkipWithError(e.what());
        }
    }
    void write_tags_only(benchmark::State& state) {
        alternate(state, [this](int variant) {
            for (std::size_t i = 0; i < tracks_.size(); ++i) io_.write_tags(tracks_[i], tag_sets_[variant][i]);
        });
    }
    // Per update, without files: the worker started and joined, the completion handed over.
    void empty_update(benchmark::State& state) {
        try {
            for (auto _ : state) update({}, filters_[0]);
        } catch (const std::exception& e) {
            state.SkipWithError(e.what());
        }
    }

    // Declared in the order they must be made: the host refers to the tag i/o and its update
    // writes the scratch album.
    temp_folder scratch_{"tessellon-tag-bench"};
    linux_host::file_tag_io io_;
    test_host host_;
    std::vector<std::string> files_;
    track_list tracks_;
    disc_record records_[2];
    std::vector<tag_record> tag_sets_[2];
    service_ref<tag_update_filter> filters_[2];
    std::vector<vorbis_fields> peer_fields_[2];
    int on_disk_ = 0;  // the variant the files hold now
};

} // namespace

int main(int argc, char** argv) {
    if (!initialize_interleaved(argc, argv)) return 2;
    try {
        tag_update_suite suite;
        suite.register_benchmarks();
        tag_update_reporter reporter(group + "ours", group + "taglib", tag_update_suite::part_names(), 1.3,
                                     median_reporter::console_options());
        benchmark::RunSpecifiedBenchmarks(&reporter);
        benchmark::Shutdown();
        return reporter.errors() == 0 ? 0 : 1;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "tag_update_bench: %s\n", e.what());
        return 2;
    }
}
