#include "console.h"

#include "core.h"

void console_print(const char* text) {
    for (auto& receiver : all_services<console_receiver>()) receiver->print(text);
}
