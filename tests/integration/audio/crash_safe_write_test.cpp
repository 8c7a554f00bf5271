// A tag writer killed at random moments leaves every file whole: the same audio, and either the
// old tags or the new ones. The writes alternate between tags of very different sizes, so each
// one rewrites the file (a FLAC file without padding, an MP3 file with a large ID3v2 tag).
// TESSELLON_KILLS sets the number of kills (default 16; the release check runs 200).

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <random>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include "audio/audio_file.h"
#include "support/audio_files.h"
#include "support/temp_folder.h"

using namespace testing_support;

namespace {

tag_record tags_of_size(const char* title, std::size_t comment_bytes) {
    tag_record tags;
    tags.set_field("title", title);
    tags.set_field("comment", std::string(comment_bytes, title[0]));
    return tags;
}

std::string title_of(const std::string& path) {
    const tag_record tags = read_audio_file(path).tags;
    const std::size_t f = tags.find_field("title");
    return f == tag_record::npos ? "" : tags.value(f, 0) + ":" + std::to_string(tags.value(tags.find_field("comment"), 0).size());
}

// The MP3 file's bytes after its ID3v2 tag: the audio, which no tag write may touch.
std::string mp3_audio(const std::string& bytes) {
    if (bytes.compare(0, 3, "ID3") != 0) return bytes;
    std::size_t size = 10;
    for (int i = 6; i < 10; ++i) size += static_cast<std::size_t>(bytes[static_cast<std::size_t>(i)] & 0x7f) << (7 * (9 - i));
    if (bytes[5] & 0x10) size += 10;
    return bytes.substr(size);
}

struct subject {
    std::string path;
    tag_record small, large;
    std::string audio;  // FLAC: the MD5 of the decoded audio; MP3: the audio bytes
    std::chrono::microseconds write_time{};

    std::string audio_now() const {
        if (path.ends_with(".flac")) {
            run_audio_tool({"flac", "-t", "-s", path});  // decodes and checks against the stored MD5
            return run_audio_tool({"metaflac", "--show-md5sum", path});
        }
        return mp3_audio(read_file(path));
    }
};

} // namespace

TEST(crash_safe_write, a_writer_killed_at_any_moment_leaves_each_file_old_or_new) {
    temp_folder folder{"tessellon-kill"};
    const std::string wav = (folder / "noise.wav").string();
    run_audio_tool({"sox", "-R", "-n", "-r", "44100", "-c", "2", "-b", "16", wav, "synth", "20", "whitenoise"});
    subject flac{(folder / "big.flac").string(), tags_of_size("Small", 10), tags_of_size("Large", 200'000), {}, {}};
    subject mp3{(folder / "big.mp3").string(), tags_of_size("Small", 300'000), tags_of_size("Large", 700'000), {}, {}};
    run_audio_tool({"flac", "-s", "-f", "-o", flac.path, wav});
    run_audio_tool({"lame", "--quiet", wav, mp3.path});
    for (subject* s : {&flac, &mp3}) {
        write_tags(s->path, s->small);
        const auto start = std::chrono::steady_clock::now();
        write_tags(s->path, s->large);
        s->write_time = std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - start);
        write_tags(s->path, s->small);
    }
    run_audio_tool({"metaflac", "--remove", "--block-type=PADDING", "--dont-use-padding", flac.path});
    flac.audio = flac.audio_now();
    mp3.audio = mp3.audio_now();

    const char* env = std::getenv("TESSELLON_KILLS");
    const int kills = env ? std::atoi(env) : 16;
    std::mt19937 random(20261123);
    int damaged = 0, finished = 0;
    for (int i = 0; i < kills; ++i) {
        subject& s = i % 2 ? mp3 : flac;
        const bool was_small = title_of(s.path).starts_with("Small");
        const tag_record& target = was_small ? s.large : s.small;
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            write_tags(s.path, target);
            _exit(0);
        }
        // Anywhere from before the write starts to a little after it would have ended.
        std::uniform_int_distribution<long> moment(0, s.write_time.count() * 3 / 2);
        usleep(static_cast<useconds_t>(moment(random)));
        kill(child, SIGKILL);
        int status = 0;
        waitpid(child, &status, 0);
        if (WIFEXITED(status)) ++finished;
        const std::string title = title_of(s.path);
        const bool tags_whole = title == "Small:" + std::to_string(s.small.value(1, 0).size()) ||
                                title == "Large:" + std::to_string(s.large.value(1, 0).size());
        std::string audio;
        try {
            audio = s.audio_now();
        } catch (const std::exception& e) {
            ADD_FAILURE() << s.path << " after kill " << i << ": " << e.what();
        }
        if (!tags_whole || audio != s.audio) {
            ++damaged;
            ADD_FAILURE() << s.path << " damaged after kill " << i << " (tags: " << title << ")";
        }
    }
    std::printf("%d kills during tag writes, %d writes finished first, %d damaged files\n", kills, finished, damaged);
    EXPECT_EQ(damaged, 0);
    // The next rewrite clears the new copies that killed writes left beside the file.
    for (subject* s : {&flac, &mp3}) write_tags(s->path, title_of(s->path).starts_with("Small") ? s->large : s->small);
    for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
        EXPECT_EQ(entry.path().filename().string().find(".tessellon-"), std::string::npos) << entry.path();
}
