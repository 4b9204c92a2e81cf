# Prints how many lines of each source file the tests have run. Needs a build with gcov data.
file(GLOB_RECURSE data "${BUILD_DIR}/CMakeFiles/*.gcda")
if(NOT data)
  message(FATAL_ERROR "No coverage data in ${BUILD_DIR}: run the tests of the coverage preset first.")
endif()
execute_process(COMMAND gcov --no-output ${data} WORKING_DIRECTORY "${BUILD_DIR}" OUTPUT_VARIABLE report ERROR_QUIET
                COMMAND_ERROR_IS_FATAL ANY)
string(REPLACE "File '${SOURCE_DIR}/" "File '" report "${report}")

string(REGEX MATCHALL "File '[^']+'\nLines executed:[0-9.]+% of [0-9]+" files "${report}")
list(SORT files)
foreach(file IN LISTS files)
  string(REGEX REPLACE "^File '([^']+)'\nLines executed:(.+)$" "\\1;\\2" file "${file}")
  list(POP_FRONT file name lines)
  if(name MATCHES "^(reader|checker|textdump|driver)/")
    message("${lines}\t${name}")
  endif()
endforeach()
