// The headless view's templates against the resource script the Win32 dialogs are made from: the
// same dialogs with the same controls, in the same order, of the same kinds and texts.

#include <fstream>
#include <map>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ui/headless/dialog_templates.h"

namespace {

std::string read_source(const std::string& relative) {
    std::ifstream in(std::string(TESSELLON_SOURCE_DIR) + "/" + relative);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

// The numbers resource.h gives its names.
std::map<std::string, int> resource_ids() {
    std::map<std::string, int> ids;
    std::string header = read_source("src/resources/resource.h");
    std::regex define(R"(#define\s+(\w+)\s+\(?(-?\d+)\)?)");
    for (std::sregex_iterator it(header.begin(), header.end(), define), end; it != end; ++it)
        ids[(*it)[1]] = std::stoi((*it)[2]);
    return ids;
}

// The dialogs of the resource script in the headless templates' terms.
std::vector<dialog_template> script_templates() {
    const std::map<std::string, int> ids = resource_ids();
    auto id_of = [&](const std::string& name) {
        auto it = ids.find(name);
        if (it == ids.end()) ADD_FAILURE() << name << " is not in resource.h";
        return it == ids.end() ? 0 : it->second;
    };
    std::vector<dialog_template> out;
    std::istringstream script(read_source("src/resources/sonatag2.rc"));
    const std::regex dialog(R"(^(\w+)\s+DIALOGEX\b)"), caption(R"(^CAPTION\s+\"([^\"]*)\")"),
        with_text(R"(^\s+(GROUPBOX|LTEXT|AUTOCHECKBOX|PUSHBUTTON|DEFPUSHBUTTON)\s+\"([^\"]*)\",\s*(\w+))"),
        without_text(R"(^\s+(EDITTEXT|COMBOBOX)\s+(\w+))"),
        custom(R"(^\s+CONTROL\s+\"([^\"]*)\",\s*(\w+),\s*(\w+|\"[^\"]*\"))");
    const std::map<std::string, control_kind> kinds = {
        {"GROUPBOX", control_kind::group_box},    {"LTEXT", control_kind::label},     {"AUTOCHECKBOX", control_kind::check_box},
        {"PUSHBUTTON", control_kind::button},     {"DEFPUSHBUTTON", control_kind::button}, {"EDITTEXT", control_kind::edit},
        {"COMBOBOX", control_kind::combo_box},    {"WC_LISTVIEW", control_kind::list_view},
        {"\"tunehall:separator\"", control_kind::separator}};
    std::smatch m;
    for (std::string line; std::getline(script, line);) {
        if (std::regex_search(line, m, dialog)) {
            out.push_back({id_of(m[1]), "", {}});
            continue;
        }
        if (out.empty()) continue;
        if (std::regex_search(line, m, caption)) {
            out.back().title = m[1];
        } else if (std::regex_search(line, m, with_text)) {
            out.back().controls.push_back({id_of(m[3]), kinds.at(m[1]), m[2]});
        } else if (std::regex_search(line, m, without_text)) {
            out.back().controls.push_back({id_of(m[2]), kinds.at(m[1]), ""});
        } else if (std::regex_search(line, m, custom)) {
            auto kind = kinds.find(m[3]);
            if (kind == kinds.end()) ADD_FAILURE() << "a control of class " << m[3] << " has no headless kind";
            else out.back().controls.push_back({id_of(m[2]), kind->second, m[1]});
        }
    }
    return out;
}

TEST(dialog_templates, the_headless_templates_are_the_resource_scripts) {
    const std::vector<dialog_template> script = script_templates();
    ASSERT_FALSE(script.empty());
    for (const dialog_template& from_script : script) {
        SCOPED_TRACE("dialog " + std::to_string(from_script.id));
        const dialog_template& headless = find_dialog_template(from_script.id);
        EXPECT_EQ(headless.title, from_script.title);
        ASSERT_EQ(headless.controls.size(), from_script.controls.size());
        for (std::size_t i = 0; i < headless.controls.size(); ++i) {
            const control_template &h = headless.controls[i], &s = from_script.controls[i];
            EXPECT_EQ(h.id, s.id) << "control " << i;
            EXPECT_EQ(h.kind, s.kind) << "control " << s.id;
            EXPECT_EQ(h.text, s.text) << "control " << s.id;
        }
    }
}

} // namespace
