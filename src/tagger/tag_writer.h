#pragma once
// Handing the tagger's tags to the host's asynchronous tag update, and what the update does to
// each track's existing tags.

#include <cstdint>

#include <tunehall/tag_record.h>
#include <tunehall/tag_update.h>

#include "cddb/disc_record.h"

// The task id the tagger gives its updates; a completion with any other id is not its own.
constexpr std::uint32_t tagger_update_task_id = 0x976e641d;

// Puts `prepared` onto a track's `tags`. Wiping replaces every field. Keeping first removes the
// fields the tagger owns ("album artist", "artist", "album", "genre", "year", "tracknumber",
// "title", "comment") and then sets each prepared field, replacing one of the same name; fields
// such as "date" or "discnumber" that the match does not set stay as they were.
void apply_prepared_tags(tag_record& tags, const tag_record& prepared, bool wipe);

// Starts the host's update of `tracks` (the i-th track gets the i-th track's tags of `record`;
// the counts are equal) and returns at once; `done` hears the result under tagger_update_task_id.
void start_tag_update(const disc_record& record, const track_list& tracks, bool wipe, HWND parent,
                      service_ref<completion_notification> done);
