#pragma once
// The component's modeless dialogs that are open right now. Dialogs are created on the main
// thread, but the host may end the component from elsewhere, so the list is kept under a lock.
// When the host shuts the component's services down, the dialogs still open are closed.

#include <cstddef>

class open_dialog {
public:
    // Destroys the window and the dialog without writing anything.
    virtual void close_now() = 0;

protected:
    ~open_dialog() = default;
};

namespace open_dialogs {

void add(open_dialog* dialog);
void remove(open_dialog* dialog);
std::size_t count();
// Closes every dialog on the list (each removes itself while closing).
void close_all();

} // namespace open_dialogs
