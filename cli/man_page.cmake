# Writes the manual page of zel from its own help texts: zel --help, then zel NAME --help for
# each command that it lists. Run as cmake -DZEL=<program> -DOUTPUT=<zel.1> -DVERSION=<x.y.z>
# -DWORK=<scratch directory> -P man_page.cmake.

# zel runs with a registry and runtime directory of its own, never the user's.
file(MAKE_DIRECTORY ${WORK}/registry ${WORK}/run ${WORK}/config)
set(ENV{ZEL_REGISTRY_DIR} ${WORK}/registry)
set(ENV{XDG_RUNTIME_DIR} ${WORK}/run)
set(ENV{XDG_CONFIG_HOME} ${WORK}/config)
set(ENV{ASAN_OPTIONS} detect_leaks=0)

function(help_of out)
  execute_process(COMMAND ${ZEL} ${ARGN} --help OUTPUT_VARIABLE text RESULT_VARIABLE status)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "zel ${ARGN} --help failed: ${status}")
  endif()
  set(${out} "${text}" PARENT_SCOPE)
endfunction()

# Text as roff: backslashes escaped, lines that begin with a dot or a quote kept as text.
function(roff out text)
  string(REPLACE "\\" "\\e" text "${text}")
  string(REGEX REPLACE "(^|\n)([.'])" "\\1\\\\&\\2" text "${text}")
  string(REGEX REPLACE "\n+$" "" text "${text}")
  set(${out} "${text}" PARENT_SCOPE)
endfunction()

help_of(main)
string(REGEX MATCHALL "\n  [a-z0-9]+ " listed "${main}")
roff(page_main "${main}")
set(page ".TH ZEL 1 \"\" \"ZelBL70KT ${VERSION}\" \"User Commands\"\n")
string(APPEND page ".SH NAME\nzel \\- the command line face of the ZelBL70KT library\n")
string(APPEND page ".SH SYNOPSIS\n.nf\n${page_main}\n.fi\n.SH COMMANDS\n")
foreach(line IN LISTS listed)
  string(STRIP "${line}" name)
  help_of(text ${name})
  roff(text "${text}")
  string(APPEND page ".SS ${name}\n.nf\n${text}\n.fi\n")
endforeach()
string(APPEND page ".SH ENVIRONMENT\n.nf\n"
  "ZEL_REGISTRY_DIR  the directory of the registry's files\n"
  "ZEL_LCID, ZEL_SYSTEM_LCID, ZEL_ACP, ZEL_OEMCP, ZEL_OS_VERSION, ZEL_DRIVE_<letter>, ZEL_DEBUG\n"
  "                  the platform answers that the library reads, as the README tells\n.fi\n")
string(APPEND page ".SH EXIT STATUS\n0 done; 1 failed or refused, with a message on standard error; 2 misused, "
  "with a line on standard error that says what was wrong, then the usage.\n")
file(WRITE ${OUTPUT} "${page}")
