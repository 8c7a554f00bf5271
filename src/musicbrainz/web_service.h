#pragma once
// Where disc-id requests go.

#include <string>
#include <string_view>

// "musicbrainz.org", or the host (with an optional ":port") named by the environment variable
// TESSELLON_MUSICBRAINZ_HOST, so that tests and demos can point the lookup at a local server.
std::string musicbrainz_web_service_host();

// "http://" host "/ws/2/discid/" id "?inc=recordings+artist-credits".
std::string musicbrainz_request_url(std::string_view disc_id);

// The second try for a disc the service does not know by its id: the same disc id with its table
// of contents in the service's notation, which the service matches approximately.
// "http://" host "/ws/2/discid/" id "?toc=" toc "&cdstubs=no&inc=recordings+artist-credits".
std::string musicbrainz_toc_request_url(std::string_view disc_id, std::string_view toc);
