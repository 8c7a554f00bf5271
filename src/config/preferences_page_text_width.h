#pragma once
// How wide a text is drawn in a list view, for sizing its columns: the list's own measure on
// Windows; the text's length in a headless view, where widths are counted in characters.

#include <string>

#include "ui/dialog_view.h"

int list_text_width(const dialog_view& view, int list, const std::string& text);
