// The whole MusicBrainz lookup against the project's local web service, over the Linux host's
// real HTTP, with the cache in a real profile folder.

#include <algorithm>
#include <chrono>
#include <functional>
#include <stdexcept>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <tunehall/exceptions.h>

#include "http/http_filesystem.h"
#include "musicbrainz/disc_id.h"
#include "musicbrainz/lookup.h"
#include "support/failure_of.h"
#include "support/local_server.h"
#include "support/temp_folder.h"
#include "support/test_host.h"
#include "unit/musicbrainz/mb_test_data.h"
#include "xml/xml_parser.h"

namespace {

namespace fs = std::filesystem;
using testing_support::local_server;
using testing_support::read_file;
using testing_support::write_file;
using names = std::vector<std::string>;

constexpr const char* server_script = "tests/servers/musicbrainz_server.py";
const std::string dark_disc = "c.J3z3pava1oPzXD0K2e9q48lJc-";
const std::string ziggy_disc1 = "pphmFbEaZKk7KDKQ_AKCMVtrjIg-";
const std::string ziggy_disc2 = "cm9L.BbeuJ_zNOwr0C_e.K0.D0E-";

std::string request_for(const std::string& disc_id) {
    return "/ws/2/discid/" + disc_id + "?inc=recordings+artist-credits";
}

names files_in(const fs::path& folder) {
    names out;
    std::error_code ec;
    for (auto& entry : fs::directory_iterator(folder, ec)) out.push_back(entry.path().filename().string());
    std::sort(out.begin(), out.end());
    return out;
}

// A host with HTTP, pointed at one local server through the environment.
struct lookup_fixture {
    testing_support::test_host host;
    local_server server;
    mb_testing::scoped_environment service_host;
    fs::path cache_folder = host.profile() / "mb-cache";

    explicit lookup_fixture(const std::vector<std::string>& server_args = {})
        : server(server_script, server_args),
          service_host("TESSELLON_MUSICBRAINZ_HOST", ("127.0.0.1:" + std::to_string(server.port())).c_str()) {
        host.add_service(filesystem::class_guid, make_http_filesystem());
    }

    std::shared_ptr<musicbrainz_release> lookup(const std::string& disc_id) {
        return lookup(mb_testing::tracks_of(mb_testing::disc_with_id(disc_id)));
    }
    std::shared_ptr<musicbrainz_release> lookup(const track_list& tracks) {
        abort_source_dummy no_abort;
        return musicbrainz_lookup(tracks, no_abort);
    }
};

struct musicbrainz_lookup_test : testing::Test, lookup_fixture {};

// A folder of answers for a server of its own: `disc_id`.xml holds `answer`.
struct answer_folder {
    testing_support::temp_folder folder{"tessellon-answers"};
    answer_folder(const std::string& disc_id, const std::string& answer) {
        write_file(folder / (disc_id + ".xml"), answer);
    }
    std::vector<std::string> server_args() const { return {"--answers", folder.path().string()}; }
};

using testing_support::failure_of;

// ---------------------------------------------------------------------------------------------

TEST_F(musicbrainz_lookup_test, a_disc_is_asked_for_by_its_id_and_the_earliest_edition_comes_back) {
    std::shared_ptr<musicbrainz_release> release = lookup(dark_disc);
    ASSERT_TRUE(release);
    EXPECT_EQ(server.requests(), names{request_for(dark_disc)});
    EXPECT_EQ(release->title, "Dark Was the Night");
    EXPECT_EQ(release->date, "2009-02-16");
    EXPECT_EQ(release->tracks.size(), 15u);
}

// The same disc again comes from the cache, until its result is gone.
TEST_F(musicbrainz_lookup_test, the_same_disc_twice_makes_one_request_while_its_result_is_cached) {
    std::shared_ptr<musicbrainz_release> first = lookup(dark_disc);
    std::shared_ptr<musicbrainz_release> second = lookup(dark_disc);
    EXPECT_EQ(server.requests().size(), 1u);
    EXPECT_EQ(second->date, first->date);
    EXPECT_EQ(second->tracks[10].artist, first->tracks[10].artist);

    const std::string digest = read_file(cache_folder / ("disc-" + dark_disc));
    fs::remove(cache_folder / ("result-" + digest));
    EXPECT_EQ(lookup(dark_disc)->date, "2009-02-16");
    EXPECT_EQ(server.requests().size(), 2u);
    EXPECT_TRUE(fs::exists(cache_folder / ("result-" + digest)));
}

TEST_F(musicbrainz_lookup_test, the_cache_holds_the_answer_once_and_names_it_from_every_disc) {
    lookup(ziggy_disc1);
    names files = files_in(cache_folder);
    // Disc 1 of the release has six ids, disc 2 one; and one result.
    ASSERT_EQ(files.size(), 8u);
    const std::string digest = read_file(cache_folder / ("disc-" + ziggy_disc1));
    EXPECT_EQ(digest.size(), 40u);
    EXPECT_EQ(digest.find_first_not_of("0123456789abcdef"), std::string::npos);
    for (const char* id :
         {"1ndha6L7TAnT7aOJAnCrdZkGJhE-", "yzS_q05CTDR7Gb3iv9yQO9ZvaTA-", "cm9L.BbeuJ_zNOwr0C_e.K0.D0E-"})
        EXPECT_EQ(read_file(cache_folder / (std::string("disc-") + id)), digest) << id;
    // The result is the content of "metadata", trimmed, exactly as the answer has it.
    const std::string answer = mb_testing::server_answer(ziggy_disc1);
    const std::string result = read_file(cache_folder / ("result-" + digest));
    EXPECT_EQ(result, mb_testing::metadata_of(answer).content);
    EXPECT_EQ(result.rfind("<disc id=\"" + ziggy_disc1 + "\">", 0), 0u);
}

TEST_F(musicbrainz_lookup_test, the_second_disc_of_a_release_comes_from_the_cache) {
    EXPECT_EQ(lookup(ziggy_disc1)->disc_number, 1u);
    // Not even a failing service is asked now.
    server.set_fault("http-status:503");
    std::shared_ptr<musicbrainz_release> disc2 = lookup(ziggy_disc2);
    EXPECT_EQ(server.requests(), names{request_for(ziggy_disc1)});
    EXPECT_EQ(disc2->disc_number, 2u);
    ASSERT_EQ(disc2->tracks.size(), 12u);
    EXPECT_EQ(disc2->tracks[0].artist, names{"The Arnold Corns"});
}

TEST_F(musicbrainz_lookup_test, a_cache_that_cannot_be_written_fails_the_lookup) {
    write_file(cache_folder, "a file where the cache folder should be");
    EXPECT_THROW(lookup(dark_disc), tunehall_io::exception_io);
}

TEST_F(musicbrainz_lookup_test, an_answer_that_yields_no_release_is_not_cached) {
    // The service knows the disc but lists no numbered tracks: asked again next time, as it may
    // have been fixed by then.
    const std::string id = "pmzhT6ZlFiwSRCdVwV0eqire5_Y-";
    EXPECT_EQ(failure_of<musicbrainz_no_match>([&] { lookup(id); }), "No matching entry");
    EXPECT_FALSE(fs::exists(cache_folder));
    EXPECT_EQ(failure_of<musicbrainz_no_match>([&] { lookup(id); }), "No matching entry");
    EXPECT_EQ(server.requests(), (names{request_for(id), request_for(id)}));
}

TEST_F(musicbrainz_lookup_test, a_disc_unknown_by_id_and_by_toc_is_the_services_not_found) {
    // Disc 2 has 12 tracks; dropping the last one gives another disc id, which no answer has,
    // and a TOC close to no known disc.
    std::vector<double> lengths = mb_testing::lengths_of(mb_testing::disc_with_id(ziggy_disc2));
    lengths.pop_back();
    const track_list tracks = mb_testing::tracks_of(lengths);
    const musicbrainz_toc toc = compute_musicbrainz_toc(tracks);
    const std::string id = musicbrainz_disc_id(toc);
    const std::string message = failure_of<tunehall_io::exception_io_not_found>([&] { lookup(tracks); });
    // The message of the first answer, as for any disc not found.
    EXPECT_NE(message.find("404"), std::string::npos) << message;
    EXPECT_NE(message.find(request_for(id)), std::string::npos) << message;
    EXPECT_EQ(server.requests(),
              (names{request_for(id), "/ws/2/discid/" + id + "?toc=" + musicbrainz_toc_text(toc) +
                                          "&cdstubs=no&inc=recordings+artist-credits"}));
    EXPECT_FALSE(fs::exists(cache_folder));
}

TEST_F(musicbrainz_lookup_test, a_truncated_answer_is_an_xml_error) {
    server.set_fault("truncate");
    EXPECT_EQ(failure_of<ZR::xmlParser::error>([&] { lookup(dark_disc); }), "XML error");
    EXPECT_FALSE(fs::exists(cache_folder));
}

TEST_F(musicbrainz_lookup_test, too_few_or_too_many_tracks_are_refused_before_any_request) {
    EXPECT_EQ(failure_of<std::invalid_argument>([&] { lookup(track_list{}); }), "invalid argument");
    EXPECT_EQ(failure_of<std::invalid_argument>([&] { lookup(mb_testing::tracks_of(std::vector<double>(100, 60.0))); }),
              "invalid argument");
    EXPECT_TRUE(server.requests().empty());
}

TEST_F(musicbrainz_lookup_test, an_abort_while_the_service_is_slow_ends_the_lookup) {
    server.set_fault("slow:30");
    abort_source_impl abort;
    // Abort once the request has reached the server; the answer would take half a minute.
    std::thread user([&] {
        while (server.requests().empty()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
        abort.abort();
    });
    track_list tracks = mb_testing::tracks_of(mb_testing::disc_with_id(dark_disc));
    EXPECT_THROW(musicbrainz_lookup(tracks, abort), tunehall_io::exception_aborted);
    user.join();
    EXPECT_FALSE(fs::exists(cache_folder));
}

// ---------------------------------------------------------------------------------------------
// Answers made for one test each

TEST(musicbrainz_answers, disc_ids_that_could_name_files_elsewhere_are_not_cached) {
    // A hostile answer lists ids that are paths: one would land in the profile folder, one far
    // above it (28 characters, as an id has).
    const std::string sneaky = "../x";
    const std::string climbing = "../../../../../../../../../x";
    ASSERT_EQ(climbing.size(), 28u);
    std::string answer = mb_testing::server_answer(ziggy_disc1);
    const std::string list = "<disc-list count=\"6\">";
    answer.insert(answer.find(list) + list.size(),
                  "<disc id=\"" + sneaky + "\"><sectors>1</sectors></disc><disc id=\"" + climbing + "\"/>");
    answer_folder answers(ziggy_disc1, answer);
    lookup_fixture f(answers.server_args());

    EXPECT_EQ(f.lookup(ziggy_disc1)->disc_number, 1u);
    EXPECT_EQ(files_in(f.cache_folder).size(), 8u);  // the real ids and the result only
    for (auto& entry : fs::recursive_directory_iterator(f.host.profile()))
        EXPECT_NE(entry.path().filename(), "x") << entry.path();
    for (const std::string& id : {sneaky, climbing}) {
        EXPECT_FALSE(fs::exists((f.cache_folder / ("disc-" + id)).lexically_normal())) << id;
        EXPECT_FALSE(fs::exists((f.cache_folder / id).lexically_normal())) << id;
    }
    EXPECT_FALSE(fs::exists(f.host.profile() / "x"));
}

TEST(musicbrainz_answers, an_answer_above_eight_mebibytes_is_refused) {
    std::string answer = mb_testing::server_answer(ziggy_disc1);
    answer.insert(answer.find("<metadata"), "<!--" + std::string(8 * 1024 * 1024, '-') + " -->\n");
    answer_folder answers(ziggy_disc1, answer);
    lookup_fixture f(answers.server_args());
    EXPECT_THROW(f.lookup(ziggy_disc1), tunehall_io::exception_io_data);
    EXPECT_FALSE(fs::exists(f.cache_folder));
}

} // namespace
