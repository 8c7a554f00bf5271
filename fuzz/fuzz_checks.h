#pragma once
// What must hold for every value a parser hands out, whatever bytes it was given. A broken
// property ends the run like a crash, so libFuzzer keeps the input that broke it.

#include "cddb/disc_record.h"
#include "config/server_record.h"

// Ends the process with `what` when `condition` is false.
void require(bool condition, const char* what);

// A parsed entry: every text is readable, and a copy keeps the texts and the track count.
void check_entry(const disc_record& record);

// A query match: category and disc id are single non-empty words.
void check_match(const disc_record& record);

// A listed server: the four leading fields are single non-empty words and a description
// follows them.
void check_site(const server_record& site);
