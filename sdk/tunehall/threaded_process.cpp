#include "threaded_process.h"

void threaded_process_status::set_progress_float(double fraction) {
    if (!(fraction > 0.0)) fraction = 0.0;
    if (fraction > 1.0) fraction = 1.0;
    set_progress(static_cast<std::uint32_t>(fraction * progress_max + 0.5));
}
