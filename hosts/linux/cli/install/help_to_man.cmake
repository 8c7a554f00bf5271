# Writes the manual page of tessellon from its --help text: the usage as the synopsis, every
# other line kept as it is (preformatted), "Xxx:" headings as sections.
# cmake -DPROGRAM=path/to/tessellon -DOUTPUT=tessellon.1 -P help_to_man.cmake
execute_process(COMMAND ${PROGRAM} --help OUTPUT_VARIABLE help RESULT_VARIABLE status)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "${PROGRAM} --help failed: ${status}")
endif()
execute_process(COMMAND ${PROGRAM} --version OUTPUT_VARIABLE version OUTPUT_STRIP_TRAILING_WHITESPACE)

# roff: a backslash is written \e, a line may not begin with a control character.
string(REPLACE "\\" "\\e" help "${help}")
string(REPLACE "-" "\\-" help "${help}")
string(REGEX REPLACE "(^|\n)([.'])" "\\1\\\\&\\2" help "${help}")
string(REGEX REPLACE "\n$" "" help "${help}")
# Kept out of CMake's list syntax while the text is cut into lines.
string(REPLACE ";" "<semicolon>" help "${help}")
string(REPLACE "[" "<open>" help "${help}")
string(REPLACE "]" "<close>" help "${help}")
string(REPLACE "\n" ";" lines "${help}")

set(page ".TH TESSELLON 1 \"\" \"${version}\" \"User Commands\"\n.SH NAME\ntessellon \\- tag the files of one album from CDDB servers and MusicBrainz\n")
foreach(line IN LISTS lines)
  string(REPLACE "<semicolon>" ";" line "${line}")
  string(REPLACE "<open>" "[" line "${line}")
  string(REPLACE "<close>" "]" line "${line}")
  if(line MATCHES "^Usage: (.*)$")
    string(APPEND page ".SH SYNOPSIS\n.nf\n${CMAKE_MATCH_1}\n.fi\n.SH DESCRIPTION\n.nf\n")
  elseif(line MATCHES "^([A-Z][A-Za-z ]*):$")
    string(TOUPPER "${CMAKE_MATCH_1}" heading)
    string(APPEND page ".fi\n.SH ${heading}\n.nf\n")
  else()
    string(APPEND page "${line}\n")
  endif()
endforeach()
string(APPEND page ".fi\n")
file(WRITE ${OUTPUT} "${page}")
