#pragma once
// What one lookup found: the tracks it ran on, and per configured server (in list order) the
// entries read from it. Shared between the background task and the tagger dialog.

#include <string>
#include <vector>

#include <tunehall/platform.h>
#include <tunehall/service.h>
#include <tunehall/track.h>

#include "cddb/disc_record.h"

struct server_result {
    std::string label;                 // the server's description
    std::vector<disc_record> records;  // copies of the entries read, in the order received
};

class lookup_state : public service_base {
    TUNEHALL_SERVICE_CLASS(service_base, {0x527d2e98, 0xe215, 0x4790, {0xa3, 0xed, 0xdd, 0xce, 0x09, 0x31, 0x23, 0xd7}})
public:
    explicit lookup_state(track_list selection) : tracks(std::move(selection)) {}

    track_list tracks;
    std::vector<server_result> results;

    // Entries over all servers.
    std::size_t record_count() const {
        std::size_t n = 0;
        for (auto& r : results) n += r.records.size();
        return n;
    }
};

// Opens the tagger dialog on a finished lookup. The tagger registers one; the first registered
// is used.
class tagger_dialog_factory : public service_base {
    TUNEHALL_SERVICE_CLASS(service_base, {0xbb0e29f3, 0xeabc, 0x432a, {0xb2, 0xd5, 0x92, 0x12, 0xc3, 0xef, 0x55, 0xbe}})
public:
    virtual void open(HWND parent, service_ref<lookup_state> state) = 0;
};
