#include "ui/edit_keys.h"

namespace in_place {

namespace {
constexpr unsigned vk_back = 0x08, vk_tab = 0x09, vk_return = 0x0D, vk_escape = 0x1B, vk_a = 'A';

// Characters that end a word for Ctrl+Backspace: blanks and the punctuation that separates words
// in titles; an apostrophe stays inside a word ("Don't").
bool separates_words(char16_t c) {
    switch (c) {
    case u' ': case u'\t': case u'\r': case u'\n': case u'/': case u'\\': case u'-': case u',': case u'.':
    case u';': case u':': case u'(': case u')': case u'[': case u']': case u'"': case u'&': case u'!': case u'?':
        return true;
    default:
        return false;
    }
}
bool is_blank(char16_t c) { return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n'; }
} // namespace

key_action action_for_key(unsigned key, modifiers mods, std::uint32_t opts) {
    const bool control_alone = mods.control && !mods.shift && !mods.alt;
    switch (key) {
    case vk_return:
        // Ctrl+Enter is the control's: a multi-line editor takes a line break.
        return mods.control ? key_action::pass : key_action::end_accept;
    case vk_tab:
        return mods.shift ? key_action::end_previous : key_action::end_next;
    case vk_escape:
        return key_action::end_cancel;
    case vk_a:
        return control_alone ? key_action::select_all : key_action::pass;
    case vk_back:
        return control_alone && !(opts & read_only) ? key_action::delete_word : key_action::pass;
    default:
        return key_action::pass;
    }
}

int end_code_of(key_action action) {
    switch (action) {
    case key_action::end_accept: return accepted;
    case key_action::end_next: return next_cell;
    case key_action::end_previous: return previous_cell;
    case key_action::end_cancel: return cancelled;
    default: return -1;
    }
}

std::size_t word_start_before(const std::u16string& text, std::size_t caret) {
    std::size_t at = caret < text.size() ? caret : text.size();
    while (at > 0 && is_blank(text[at - 1])) --at;
    // A run of separators right before the caret goes as one word.
    if (at > 0 && separates_words(text[at - 1])) {
        while (at > 0 && separates_words(text[at - 1]) && !is_blank(text[at - 1])) --at;
        return at;
    }
    while (at > 0 && !separates_words(text[at - 1])) --at;
    return at;
}

std::u16string single_line_paste(const std::u16string& text) {
    std::u16string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        char16_t c = text[i];
        if (c == u'\r') {
            if (i + 1 < text.size() && text[i + 1] == u'\n') ++i;
            out += u' ';
        } else if (c == u'\n') {
            out += u' ';
        } else {
            out += c;
        }
    }
    return out;
}

bool dark_theme_supported(std::uint32_t major, std::uint32_t minor, std::uint32_t build) {
    if (major != 10) return major > 10;
    return minor > 0 || build >= 17763;
}

} // namespace in_place
