#pragma once
// Cuts a text into lines the way the CDDB transport does: CR, LF and CR LF all end a line, and
// empty lines are dropped. The fuzz targets and the benchmarks share it so that the parser sees
// exactly what a server's answer would hand it.

#include <cstddef>
#include <string_view>

template <typename OnLine>
void for_each_answer_line(std::string_view text, OnLine&& on_line) {
    std::size_t start = 0;
    for (std::size_t i = 0; i <= text.size(); ++i) {
        if (i < text.size() && text[i] != '\r' && text[i] != '\n') continue;
        if (i > start) on_line(text.substr(start, i - start));
        start = i + 1;
    }
}
