#pragma once
// Whether a component may answer from what it kept of earlier web-service answers.
//
// Optional: a host that does not offer it leaves every component to use its caches as it always
// does. A host offers it when the user asked for fresh answers (for example after a service was
// fixed) or when a run is to leave the profile as it found it, for as long as that request holds.

#include "service.h"

class answer_cache_policy : public service_base {
    TUNEHALL_SERVICE_CLASS(service_base, {0x693462f2, 0x15d1, 0x40f9, {0x86, 0xc2, 0xb7, 0x99, 0xe9, 0x0b, 0x12, 0x7f}})
public:
    // True: ask the services again instead of answering from the cache. New answers are still
    // kept for later.
    virtual bool refresh_cached_answers() = 0;
    // False: answers fetched now are used but not kept.
    virtual bool keep_new_answers() { return true; }
};
