#include "ui/open_dialogs.h"

#include <algorithm>
#include <mutex>
#include <vector>

namespace {

struct dialog_list {
    std::mutex lock;
    std::vector<open_dialog*> dialogs;
};

dialog_list& the_list() {
    static dialog_list list;
    return list;
}

} // namespace

namespace open_dialogs {

void add(open_dialog* dialog) {
    dialog_list& l = the_list();
    std::lock_guard guard(l.lock);
    l.dialogs.push_back(dialog);
}

void remove(open_dialog* dialog) {
    dialog_list& l = the_list();
    std::lock_guard guard(l.lock);
    std::erase(l.dialogs, dialog);
}

std::size_t count() {
    dialog_list& l = the_list();
    std::lock_guard guard(l.lock);
    return l.dialogs.size();
}

void close_all() {
    // Closing removes the dialog from the list, so the lock is not held across it.
    for (;;) {
        open_dialog* next = nullptr;
        {
            dialog_list& l = the_list();
            std::lock_guard guard(l.lock);
            if (l.dialogs.empty()) return;
            next = l.dialogs.back();
        }
        next->close_now();
        remove(next);  // in case the dialog did not
    }
}

} // namespace open_dialogs
