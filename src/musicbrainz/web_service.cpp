#include "musicbrainz/web_service.h"

#include <cstdlib>

std::string musicbrainz_web_service_host() {
    const char* chosen = std::getenv("TESSELLON_MUSICBRAINZ_HOST");
    return chosen && *chosen ? chosen : "musicbrainz.org";
}

std::string musicbrainz_request_url(std::string_view disc_id) {
    std::string url = "http://" + musicbrainz_web_service_host() + "/ws/2/discid/";
    url += disc_id;
    url += "?inc=recordings+artist-credits";
    return url;
}
