#pragma once
// The `tessellon` program run as a user runs it, with a profile of its own. Only for test
// programs built with TESSELLON_BINARY (the integration tests).

#include <algorithm>
#include <filesystem>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "support/local_server.h"
#include "support/run_program.h"
#include "support/temp_folder.h"

namespace testing_support {

struct tessellon_cli {
    temp_folder profile{"tessellon-profile"};

    // `tessellon --profile <profile> <args...>`
    program_result run(std::vector<std::string> args, const std::vector<std::string>& env = {},
                       const std::function<void(pid_t)>& while_running = {}) const {
        args.insert(args.begin(), {TESSELLON_BINARY, "--profile", profile.path().string()});
        return run_program(args, env, while_running);
    }
    // The local CDDB server `server` as the only server of the list (the built-in placeholder
    // removed). Returns false when either command failed.
    bool use_only(const local_server& server) const {
        return run({"servers", "add", "127.0.0.1", std::to_string(server.port()), "/~cddb/cddb.cgi", "Local"}).exit_code == 0 &&
               run({"servers", "remove", "1"}).exit_code == 0;
    }
    // The "name=value" lines `show` prints for each file of `album`, sorted within the file.
    std::vector<std::vector<std::string>> shown(const std::filesystem::path& album) const {
        const program_result r = run({"show", album.string()});
        std::vector<std::vector<std::string>> files;
        std::istringstream lines(r.exit_code == 0 ? r.out : "");
        for (std::string line; std::getline(lines, line);) {
            if (line.rfind("  ", 0) != 0) files.emplace_back();
            else if (!files.empty()) files.back().push_back(line.substr(2));
        }
        for (auto& f : files) std::sort(f.begin(), f.end());
        return files;
    }
};

// The fields, sorted, that match 1 of the fixture disc 12025d03 gives its track `track` (0-based).
inline std::vector<std::string> fields_of_12025d03(int track) {
    static const char* titles[] = {"I'm Your Puppet", "Me And Jacky", "If You Don't Like Country"};
    std::vector<std::string> f = {"album=Ernest Ray Everett - Single CD", "artist=Ernest Ray Everett - Single CD",
                                  "date=2009", "genre=Country", std::string("title=") + titles[track],
                                  "totaltracks=3", "tracknumber=" + std::to_string(track + 1)};
    std::sort(f.begin(), f.end());
    return f;
}

} // namespace testing_support
