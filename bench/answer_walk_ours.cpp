// Our side of the walk benchmark: exactly the reading the lookup does with an answer fresh from
// the web service, without the cache.

#include "answer_walk.h"
#include "musicbrainz/response_walk.h"
#include "xml/xml_parser.h"

namespace xml = ZR::xmlParser;

answer_walk_result walk_answer_ours(std::string_view answer, std::string_view disc_id, std::size_t track_count) {
    std::string_view text = answer;
    xml::prepare_document(text);
    const xml::element metadata = xml::find_child(xml::element(text.data(), text.size()), "metadata");
    musicbrainz_answer_walk walk(metadata);

    answer_walk_result result;
    walk.collect_disc_ids(result.disc_ids);
    walk.read_release_candidates(disc_id, track_count, result.candidates);
    return result;
}
