#pragma once
// The controls of each dialog template, for the headless view: the same ids, kinds and texts
// as the resource templates.

#include <string>
#include <vector>

enum class control_kind { label, edit, button, check_box, group_box, list_view, combo_box, separator };

struct control_template {
    int id;
    control_kind kind;
    std::string text;
};

struct dialog_template {
    int id;
    std::string title;
    std::vector<control_template> controls;
};

// The template `id`; std::invalid_argument for an unknown one.
const dialog_template& find_dialog_template(int id);
