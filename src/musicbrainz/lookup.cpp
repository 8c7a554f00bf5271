#include "musicbrainz/lookup.h"

#include <cstring>
#include <string>
#include <vector>

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

// The "metadata" element of an earlier answer, from the cache; false when it is not there.
bool cached_metadata(musicbrainz_cache& cache, const std::string& disc_id, element& out) {
    std::string digest;
    if (!cache.get("disc-" + disc_id, digest)) return false;
    digest.resize(std::strlen(digest.c_str()));  // up to a zero byte, if any
    std::string content;
    if (!cache.get("result-" + digest, content)) return false;
    out = element();
    out.content = std::move(content);
    out.namespaces[""] = std::string(ZR::xmlParser::musicbrainz_namespace);
    return true;
}

element fetch_metadata(const std::string& disc_id, abort_source& abort) {
    file_ptr answer = filesystem::g_open(musicbrainz_request_url(disc_id).c_str(), filesystem::open_mode::read, abort);
    const std::string body = read_bounded(*answer, abort);
    std::string_view text = body;
    ZR::xmlParser::prepare_document(text);
    return ZR::xmlParser::find_child(element(text.data(), text.size()), "metadata");
}

// Stores the answer once, under its digest, and points every disc it lists at it.
void store(musicbrainz_cache& cache, const element& metadata, musicbrainz_answer_walk& walk) {
    std::vector<std::string> disc_ids;
    walk.collect_disc_ids(disc_ids);

    sha1_hasher hasher;
    hasher.add(metadata.content);
    const std::string digest = lowercase_hex(hasher.finish());
    cache.put("result-" + digest, metadata.content.data(), metadata.content.size());
    for (const std::string& id : disc_ids)
        // The answer names these files: only texts shaped like disc ids may do that.
        if (is_disc_id_form(id)) cache.put("disc-" + id, digest.data(), digest.size());
}

} // namespace

std::shared_ptr<musicbrainz_release> musicbrainz_lookup(const track_list& tracks, abort_source& abort) {
    musicbrainz_cache cache;
    return musicbrainz_lookup(tracks, abort, cache);
}

std::shared_ptr<musicbrainz_release> musicbrainz_lookup(const track_list& selection, abort_source& abort,
                                                        musicbrainz_cache& cache) {
    const track_list tracks = selection;
    const std::string disc_id = compute_musicbrainz_disc_id(tracks);

    element metadata;
    const bool from_cache = cached_metadata(cache, disc_id, metadata);
    if (!from_cache) metadata = fetch_metadata(disc_id, abort);
    musicbrainz_answer_walk walk(metadata);
    if (!from_cache) store(cache, metadata, walk);

    std::vector<musicbrainz_release> candidates;
    walk.read_release_candidates(disc_id, tracks.size(), candidates);
    return std::make_shared<musicbrainz_release>(choose_release(candidates));
}
