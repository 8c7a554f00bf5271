#pragma once
// The release as the lookup dialog's lists show it, and back: artists joined by "; ", the disc
// as "n/m". What the user types is read back with the same rules.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "musicbrainz/release.h"

std::string join_artists(const std::vector<std::string>& artists);
// Splits at each ";" and skips the blanks after it, so "A;  B" is "A" and "B". Empty pieces are
// dropped: an artist field of "" or "A;" names no empty artist.
std::vector<std::string> split_artists(std::string_view text);

std::string disc_text(const musicbrainz_release& release);
// "n/m" (or "n" alone: no total) into disc_number and total_discs, each read with
// parse_unsigned; anything but digits raises ZR::invalid_input, a number over 32 bits
// ZR::overflow.
void read_disc_text(std::string_view text, musicbrainz_release& release);
