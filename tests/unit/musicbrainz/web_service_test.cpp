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

TEST(musicbrainz_web_service, requests_go_to_the_service_by_default) {
    host_variable unset(nullptr);
    EXPECT_EQ(musicbrainz_web_service_host(), "musicbrainz.org");
    EXPECT_EQ(musicbrainz_request_url("4vi.H1hC7BRP18_a.7D4r4NOYL8-"),
              "http://musicbrainz.org/ws/2/discid/4vi.H1hC7BRP18_a.7D4r4NOYL8-?inc=recordings+artist-credits");
}

TEST(musicbrainz_web_service, the_environment_can_name_another_host) {
    host_variable local("127.0.0.1:8123");
    EXPECT_EQ(musicbrainz_request_url("x"), "http://127.0.0.1:8123/ws/2/discid/x?inc=recordings+artist-credits");
}

TEST(musicbrainz_web_service, an_empty_variable_counts_as_unset) {
    host_variable empty("");
    EXPECT_EQ(musicbrainz_web_service_host(), "musicbrainz.org");
}

} // namespace
