#pragma once
// The editor laid over one cell of a list view: a bordered container window over the cell with a
// system edit control (or a drop-down list) inside it. Keys end it: Enter accepts, Tab and
// Shift+Tab move on, Escape cancels. It ends at most once: the container is told to take the text
// now (and hands it to its owner at once), then the end is posted to it, and the editor disables
// itself so that later keys cannot end it again.

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include <tunehall/platform.h>

#include "ui/edit_keys.h"

class in_place_editor {
public:
    // The container's messages: the edit ended (end code in the first parameter), and "take the
    // text now" (sent before the end is posted).
    static constexpr UINT msg_edit_ended = WM_USER;
    static constexpr UINT msg_commit_now = WM_USER + 1;
    // The drop-down list's control id.
    static constexpr int choice_id = 666;

    // Told once, from the posted end message, what the editor held and how it ended. The owner
    // may destroy the editor from inside.
    using ended_fn = std::function<void(const std::string& text, int end_code)>;
    // Told once, from the sent "take the text now", before the end is posted: whatever made the
    // editor end (a click on another row, say) is handled only after the owner has the text.
    using committed_fn = std::function<void(const std::string& text, int end_code)>;

    // A text editor over `cell` (client coordinates of `list`) holding `text`, with the option
    // bits of in_place::options. Takes the keyboard focus. exception_win32 when a window cannot be
    // made.
    in_place_editor(HWND list, const RECT& cell, const std::string& text, std::uint32_t options, ended_fn ended);
    // A drop-down list of `choices` with `selected` chosen.
    in_place_editor(HWND list, const RECT& cell, const std::vector<std::string>& choices, int selected,
                    std::uint32_t options, ended_fn ended);
    ~in_place_editor();
    in_place_editor(const in_place_editor&) = delete;
    in_place_editor& operator=(const in_place_editor&) = delete;

    void on_commit(committed_fn committed) { committed_fn_ = std::move(committed); }

    HWND container() const { return container_; }
    // The edit control or drop-down list.
    HWND control() const { return control_; }
    // Ends the editor with `end_code` unless it has ended already (as the keys do).
    void end(int end_code);
    bool has_ended() const { return ended_; }
    // The end code and text taken when it ended (meaningful once has_ended()).
    int end_code() const { return end_code_; }
    const std::string& text() const { return text_; }

    // Whether this system draws the dark theme (Windows 10 build 17763 or later).
    static bool system_supports_dark_theme();

private:
    void create_container(HWND list, const RECT& cell);
    void finish_control(HWND list);
    void take_text();
    bool handle_key(WPARAM key);
    static LRESULT CALLBACK container_proc(HWND window, UINT message, WPARAM wp, LPARAM lp);
    static LRESULT CALLBACK control_proc(HWND window, UINT message, WPARAM wp, LPARAM lp, UINT_PTR id, DWORD_PTR self);

    std::uint32_t options_;
    ended_fn ended_fn_;
    committed_fn committed_fn_;
    HWND container_ = nullptr;
    HWND control_ = nullptr;
    bool is_choice_ = false;
    bool ended_ = false;
    int end_code_ = in_place::cancelled;
    std::string text_;
};
