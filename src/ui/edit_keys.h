#pragma once
// The in-place editor's decisions, apart from the window that carries them out: what a key does,
// where the word before the caret starts, how pasted text fits a single line, and whether the
// system can draw the dark theme. Portable, so that they are tested without a window system.

#include <cstdint>
#include <string>

namespace in_place {

// Option bits of an editor.
enum options : std::uint32_t {
    read_only = 0x1,
    multi_line = 0x2,
    centred = 0x4,
    right_aligned = 0x8,
    dark_theme = 0x200,
};

// How an editor ended, as its owner is told.
enum end_code : int { cancelled = 0, next_cell = 1, previous_cell = 2, accepted = 3 };

enum class key_action {
    pass,           // the system control handles the key
    end_accept,     // Enter
    end_next,       // Tab
    end_previous,   // Shift+Tab
    end_cancel,     // Escape
    select_all,     // Ctrl+A
    delete_word,    // Ctrl+Backspace
};

struct modifiers {
    bool control = false, shift = false, alt = false;
};

// What the virtual key `key` going down with `mods` does in an editor with `opts`.
key_action action_for_key(unsigned key, modifiers mods, std::uint32_t opts);

// The end code a key action ends the editor with; -1 for actions that do not end it.
int end_code_of(key_action action);

// Where the word before `caret` starts in `text` (UTF-16 units): blanks right before the caret
// are skipped, then the word up to the previous separator. Ctrl+Backspace deletes from there.
std::size_t word_start_before(const std::u16string& text, std::size_t caret);

// Pasted text as a single-line editor takes it: each line break (CR LF, CR or LF) becomes one
// blank.
std::u16string single_line_paste(const std::u16string& text);

// Whether the dark theme may be applied on a Windows of this version (10 build 17763 or later).
bool dark_theme_supported(std::uint32_t major, std::uint32_t minor, std::uint32_t build);

} // namespace in_place
