#include "cli/commands.h"

namespace tessellon_cli {

const char* const help_text =
    "Usage: tessellon [--profile DIR] [--component FILE] COMMAND [ARGUMENTS]\n"
    "\n"
    "Tags the files of one album from CDDB (discora) servers and MusicBrainz.\n"
    "\n"
    "Commands:\n"
    "  discid FILES|DIR | --lengths L1,L2,...\n"
    "                 the disc's CDDB id and query text\n"
    "  cddb query FILES|DIR | --lengths L1,L2,...   ask one server for matches\n"
    "  cddb read CATEGORY DISCID                    read one entry\n"
    "  cddb sites                                   the servers a server knows\n"
    "                 (the cddb commands ask the first configured server, or\n"
    "                 --server http://HOST[:PORT]/PATH)\n"
    "  about          load the component file and show what it registers\n"
    "\n"
    "Commands that print data take --json for one JSON document on stdout.\n"
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
