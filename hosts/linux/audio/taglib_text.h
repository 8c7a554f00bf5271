#pragma once
// TagLib's strings as the host's UTF-8 text.

#include <string>

#include <taglib/tstring.h>

namespace linux_audio {

// The UTF-8 text of `text`, byte for byte what `text.to8Bit(true)` gives. Reading a file's tags
// converts every key and value, and TagLib's own conversion goes through a zero-filled buffer
// four times the text's size and a second copy; this one writes the bytes once.
std::string utf8_of(const TagLib::String& text);

} // namespace linux_audio
