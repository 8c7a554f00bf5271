#include "cli/commands.h"

namespace tessellon_cli {

const char* const help_text =
    "Usage: tessellon [--profile DIR] [--component FILE] COMMAND [ARGUMENTS]\n"
    "\n"
    "Tags the files of one album from CDDB (discora) servers and MusicBrainz.\n"
    "\n"
    "Commands:\n"
    "  about          load the component and show what it registers\n"
    "\n"
    "Options:\n"
    "  --profile DIR     settings folder (default: $TESSELLON_PROFILE, else\n"
    "                    $XDG_CONFIG_HOME/tessellon, else ~/.config/tessellon)\n"
    "  --component FILE  the component to load (default: sonatag2.so beside tessellon)\n"
    "  --version         print the version\n"
    "  --help            print this text\n"
    "\n"
    "Exit status: 0 success; 1 nothing found, cancelled or aborted; 2 bad usage or a failure.\n";

} // namespace tessellon_cli
