#include "config/preferences_page_text_width.h"

int list_text_width(const dialog_view&, int, const std::string& text) { return static_cast<int>(text.size()); }
