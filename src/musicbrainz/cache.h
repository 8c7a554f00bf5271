#pragma once
// The on-disk cache of web-service answers, folder "mb-cache" in the profile. "disc-<id>" holds
// the SHA-1 (40 lower-case hex digits) of an answer's content; "result-<that hex>" holds the
// content. Every disc an answer mentions points at the same result, so one request serves every
// disc of the releases it lists. "toc-<id>" points at an answer to a request by the disc's TOC
// (the service did not know the id); it never stands in for "disc-<id>". Entries never expire.

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include <tunehall/abort.h>

class musicbrainz_cache {
public:
    // The cache in the host's profile folder.
    musicbrainz_cache();
    // A cache in `folder` (created on the first put).
    explicit musicbrainz_cache(std::string folder) : folder_(std::move(folder)) {}

    // The entry named `key`, whole; false when it cannot be read for any reason (the service is
    // asked instead). Never throws.
    bool get(std::string_view key, std::string& out);
    // Writes the entry named `key`, replacing an earlier one; failures propagate.
    void put(std::string_view key, const char* data, std::size_t length);

    const std::string& folder() const { return folder_; }
    // The file that holds the entry named `key`.
    std::string path_of(std::string_view key) const;

private:
    std::string folder_;
    bool folder_created_ = false;
    // The cache's own file operations are quick and local; the user cannot stop them.
    abort_source_dummy no_abort_;
};
