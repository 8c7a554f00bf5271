// Where disc-id requests go: the service, or the host the environment names.

#include <string>

#include <gtest/gtest.h>

#include "mb_test_data.h"
#include "musicbrainz/web_service.h"

namespace {

// The variable under test, set or cleared for one test.
struct host_variable : mb_testing::scoped_environment {
    explicit host_variable(const char* value) : scoped_environment("TESSELLON_MUSICBRAINZ_HOST", value) {}
};

TEST(musicbrainz_web_service, requests_go_to_the_service_unless_the_environment_names_another_host) {
    for (const char* unset : {static_cast<const char*>(nullptr), ""}) {
        host_variable variable(unset);
        EXPECT_EQ(musicbrainz_request_url("4vi.H1hC7BRP18_a.7D4r4NOYL8-"),
                  "http://musicbrainz.org/ws/2/discid/4vi.H1hC7BRP18_a.7D4r4NOYL8-?inc=recordings+artist-credits");
    }
    host_variable local("127.0.0.1:8123");
    EXPECT_EQ(musicbrainz_request_url("x"), "http://127.0.0.1:8123/ws/2/discid/x?inc=recordings+artist-credits");
}

} // namespace
