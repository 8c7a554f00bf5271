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

std::string musicbrainz_toc_request_url(std::string_view disc_id, std::string_view toc) {
    std::string url = "http://" + musicbrainz_web_service_host() + "/ws/2/discid/";
    url += disc_id;
    url += "?toc=";
    url += toc;
    url += "&cdstubs=no&inc=recordings+artist-credits";
    return url;
}
