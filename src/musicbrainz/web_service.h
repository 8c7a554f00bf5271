#pragma once
// Where disc-id requests go.

#include <string>
#include <string_view>

// "musicbrainz.org", or the host (with an optional ":port") named by the environment variable
// TESSELLON_MUSICBRAINZ_HOST, so that tests and demos can point the lookup at a local server.
std::string musicbrainz_web_service_host();

// "http://" host "/ws/2/discid/" id "?inc=recordings+artist-credits".
std::string musicbrainz_request_url(std::string_view disc_id);
