# The reference of the public functions, in HTML. Only the project's own build takes a warning for an error: another
# version of Doxygen may find other things to warn of.
find_package(Doxygen QUIET)
option(KOVA_API_REFERENCE "Make the API reference (needs Doxygen)" ${DOXYGEN_FOUND})
if(NOT KOVA_API_REFERENCE)
  return()
endif()
if(NOT DOXYGEN_FOUND)
  message(FATAL_ERROR "Doxygen is missing. Install it (Debian: doxygen) or configure with -DKOVA_API_REFERENCE=OFF.")
endif()

set(settings "${PROJECT_BINARY_DIR}/Doxyfile")
set(stamp "${PROJECT_BINARY_DIR}/api.stamp")
set(warn_as_error NO)
if(KOVA_DEVELOPER)
  set(warn_as_error FAIL_ON_WARNINGS)
endif()
file(CONFIGURE OUTPUT "${settings}" CONTENT "@INCLUDE_PATH = \"${PROJECT_SOURCE_DIR}/docs\"
@INCLUDE = Doxyfile
PROJECT_NUMBER = ${PROJECT_VERSION}
OUTPUT_DIRECTORY = \"${PROJECT_BINARY_DIR}\"
WARN_AS_ERROR = ${warn_as_error}
")
add_custom_command(
  OUTPUT "${stamp}"
  COMMAND "${CMAKE_COMMAND}" -E rm -rf "${PROJECT_BINARY_DIR}/api"
  COMMAND Doxygen::doxygen "${settings}"
  COMMAND "${CMAKE_COMMAND}" -E touch "${stamp}"
  DEPENDS ${PUBLIC_HEADERS} docs/Doxyfile docs/doxygen.awk docs/api.md "${settings}"
  WORKING_DIRECTORY "${PROJECT_SOURCE_DIR}"
  COMMENT "Making the API reference"
  VERBATIM)
add_custom_target(kova_api_reference ALL DEPENDS "${stamp}")
