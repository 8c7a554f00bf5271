#include "musicbrainz/lookup.h"

#include <cstring>
#include <exception>
#include <string>
#include <vector>

#include <tunehall/answer_cache_policy.h>
#include <tunehall/core.h>
#include <tunehall/exceptions.h>
#include <tunehall/stream.h>

#include "musicbrainz/bounded_read.h"
#include "musicbrainz/cache.h"
#include "musicbrainz/disc_id.h"
#include "musicbrainz/response_walk.h"
#include "musicbrainz/sha1_hasher.h"
#include "musicbrainz/web_service.h"
#include "xml/xml_parser.h"

using ZR::xmlParser::element;

namespace {

// The "metadata" element of an earlier answer, from the cache entry `pointer` ("disc-" or
// "toc-" and the disc id); false when it is not there.
bool cached_metadata(musicbrainz_cache& cache, const std::string& pointer, element& out) {
    std::string digest;
    if (!cache.get(pointer, digest)) return false;
    digest.resize(std::strlen(digest.c_str()));  // up to a zero byte, if any
    std::string content;
    if (!cache.get("result-" + digest, content)) return false;
    out = element();
    out.content = std::move(content);
    out.namespaces[""] = std::string(ZR::xmlParser::musicbrainz_namespace);
    return true;
}

element fetch_metadata(const std::string& url, abort_source& abort) {
    file_ptr answer = filesystem::g_open(url.c_str(), filesystem::open_mode::read, abort);
    const std::string body = read_bounded(*answer, abort);
    std::string_view text = body;
    ZR::xmlParser::prepare_document(text);
    return ZR::xmlParser::find_child(element(text.data(), text.size()), "metadata");
}

// Stores the answer once, under its digest, and points each of `pointers` at it.
void store(musicbrainz_cache& cache, const element& metadata, const std::vector<std::string>& pointers) {
    sha1_hasher hasher;
    hasher.add(metadata.content);
    const std::string digest = lowercase_hex(hasher.finish());
    cache.put("result-" + digest, metadata.content.data(), metadata.content.size());
    for (const std::string& pointer : pointers) cache.put(pointer, digest.data(), digest.size());
}

// Every disc an answer lists is served by it later, as by an answer for that disc itself.
std::vector<std::string> exact_pointers(musicbrainz_answer_walk& walk) {
    std::vector<std::string> ids, pointers;
    walk.collect_disc_ids(ids);
    for (const std::string& id : ids)
        // The answer names these files: only texts shaped like disc ids may do that.
        if (is_disc_id_form(id)) pointers.push_back("disc-" + id);
    return pointers;
}

// The track lengths of the TOC in milliseconds, rounded, as the service gives them.
std::vector<std::uint64_t> lengths_ms_of(const musicbrainz_toc& toc) {
    std::vector<std::uint64_t> lengths;
    for (std::size_t i = 0; i < toc.offsets.size(); ++i) {
        const std::uint64_t end = i + 1 < toc.offsets.size() ? toc.offsets[i + 1] : toc.leadout;
        const std::uint64_t frames = end > toc.offsets[i] ? end - toc.offsets[i] : 0;
        lengths.push_back((frames * 40 + 1) / 3);  // 1000 / 75 ms per frame
    }
    return lengths;
}

std::vector<musicbrainz_release> media_holding(const element& metadata, const std::string& disc_id, std::size_t n) {
    std::vector<musicbrainz_release> candidates;
    musicbrainz_answer_walk(metadata).read_release_candidates(disc_id, n, candidates);
    return candidates;
}

std::vector<musicbrainz_release> closest_media(const element& metadata, const musicbrainz_toc& toc) {
    std::vector<musicbrainz_release> candidates;
    musicbrainz_answer_walk(metadata).read_closest_media(lengths_ms_of(toc), candidates);
    return candidates;
}

std::shared_ptr<musicbrainz_release> chosen(const std::vector<musicbrainz_release>& candidates) {
    return std::make_shared<musicbrainz_release>(choose_release(candidates));
}

} // namespace

std::shared_ptr<musicbrainz_release> musicbrainz_lookup(const track_list& tracks, abort_source& abort) {
    musicbrainz_cache cache;
    musicbrainz_cache_use use;
    if (const auto policy = try_host_service<answer_cache_policy>())
        use = {!policy->refresh_cached_answers(), policy->keep_new_answers()};
    return musicbrainz_lookup(tracks, abort, cache, use);
}

std::shared_ptr<musicbrainz_release> musicbrainz_lookup(const track_list& selection, abort_source& abort,
                                                        musicbrainz_cache& cache, musicbrainz_cache_use use) {
    const track_list tracks = selection;
    const musicbrainz_toc toc = compute_musicbrainz_toc(tracks);
    const std::string disc_id = musicbrainz_disc_id(toc);
    // A match by TOC is kept under a name of its own, so that it is never taken for the
    // service's answer to the disc id; it serves this disc (as a TOC match) until a refresh.
    const std::string toc_pointer = "toc-" + disc_id;

    element metadata;
    if (use.answer_from_cache) {
        if (cached_metadata(cache, "disc-" + disc_id, metadata))
            return chosen(media_holding(metadata, disc_id, tracks.size()));
        if (cached_metadata(cache, toc_pointer, metadata)) return chosen(closest_media(metadata, toc));
    }

    std::exception_ptr unknown_disc;
    try {
        metadata = fetch_metadata(musicbrainz_request_url(disc_id), abort);
    } catch (const tunehall_io::exception_io_not_found&) {
        unknown_disc = std::current_exception();
    }
    std::vector<musicbrainz_release> candidates;
    if (!unknown_disc) {
        musicbrainz_answer_walk walk(metadata);
        walk.read_release_candidates(disc_id, tracks.size(), candidates);
        // An answer that yields nothing is not kept: the service may know better next time.
        if (!candidates.empty() && use.keep_new_answers) store(cache, metadata, exact_pointers(walk));
        return chosen(candidates);
    }

    // The service does not know the id; it may know a disc whose TOC is close.
    try {
        metadata = fetch_metadata(musicbrainz_toc_request_url(disc_id, musicbrainz_toc_text(toc)), abort);
    } catch (const tunehall_io::exception_io_not_found&) {
        std::rethrow_exception(unknown_disc);
    }
    candidates = closest_media(metadata, toc);
    if (candidates.empty()) std::rethrow_exception(unknown_disc);
    if (use.keep_new_answers) store(cache, metadata, {toc_pointer});
    return chosen(candidates);
}
