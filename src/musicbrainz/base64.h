#pragma once
// Standard base64 and the web service's variant of it for disc ids.

#include <cstdint>
#include <string>
#include <vector>

// RFC 4648 base64 with "=" padding.
std::string base64_encode(const std::vector<std::uint8_t>& bytes);

// The web service's alphabet, made from standard base64 text in place: "+" -> ".", "/" -> "_",
// "=" -> "-", so that an id can stand in a URL path and a file name.
void to_disc_id_alphabet(std::string& text);
