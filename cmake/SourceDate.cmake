# Run by cpack, first of all.
include("${CMAKE_CURRENT_LIST_DIR}/PackageTools.cmake")

# All files of a package carry the date of the last commit, so that equal sources give equal packages.
if(NOT DEFINED ENV{SOURCE_DATE_EPOCH})
  set(source_date "")
  if(EXISTS "${CPACK_KOVA_SOURCE_DIR}/.git")
    execute_process(COMMAND git log -1 --format=%ct WORKING_DIRECTORY "${CPACK_KOVA_SOURCE_DIR}"
                    OUTPUT_VARIABLE source_date OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
  endif()
  if(NOT source_date)
    file(TIMESTAMP "${CPACK_KOVA_SOURCE_DIR}/CMakeLists.txt" source_date "%s" UTC)
  endif()
  set(ENV{SOURCE_DATE_EPOCH} "${source_date}")
endif()
