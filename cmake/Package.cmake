# The Debian packages, one for each component of the installation.
option(KOVA_PACKAGES "Stop here if the tools are missing that make the packages" OFF)
if(KOVA_PACKAGES)
  include(cmake/PackageTools.cmake)
endif()
set(CPACK_GENERATOR DEB)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_PACKAGE_NAME kbaudit)
set(CPACK_PACKAGE_CONTACT "kbaudit maintainers <maintainers@kbaudit.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package has its own
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL library development)
set(CPACK_DEB_COMPONENT_INSTALL ON)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON) # whatever the modes of the sources are
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")

# The first paragraph of each description.
set(about "KOVA files hold scenes of a 3D interchange format, in versions 1.0 and 2.0.")

# The package of a program, if that is built.
macro(kova_program_package program component summary description)
  if(TARGET ${program})
    list(APPEND CPACK_COMPONENTS_ALL ${component})
    string(TOUPPER ${component} upper)
    set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${program})
    set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION graphics)
    set(CPACK_COMPONENT_${upper}_DESCRIPTION "${summary}\n${about}\n.\n${description}")
  endif()
endmacro()

kova_program_package(kbaudit program "checks and dumps KOVA scene files"
"kbaudit checks every tag, size, count and index of such a file, prints what is
wrong with it and a verdict, and dumps the scene as text. Files may come from
anywhere. The package also has the manual and some files to try.")

kova_program_package(kbsurvey survey "audits whole collections of KOVA scene files"
"kbsurvey checks all such files of a folder at once. It prints which of them are
not in order and writes reports: JSON Lines, JUnit, and a page to look at.")

kova_program_package(kbrepair repair "mends damaged KOVA scene files"
"kbrepair corrects sizes, counts, indices and tags that follow from the rest of
the file, and prints each word that it changes. All other contents stay as they
are. Of a file that was cut, it can keep what is left.")

kova_program_package(kbjson json "turns KOVA scene files into JSON, and back"
"kbjson prints such a file as a JSON document and writes the file that such a
document is about. Every file comes back byte for byte. Sizes, counts and tags
may be left out of a document that is edited; they are computed. The package
also describes the format to Kaitai Struct, ImHex, file and desktops.")

kova_program_package(kbdiff diff "tells what is different between KOVA scene files"
"kbdiff compares two such files, or two folders, as scenes: list, element,
field. Elements that were put in, taken out or renumbered are told apart from
those that have changed. It can be used as a driver of git.")

set(library_package libkova${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME ${library_package})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA "${CMAKE_CURRENT_LIST_DIR}/debian/triggers")
set(CPACK_COMPONENT_LIBRARY_DESCRIPTION "library for KOVA scene files
${about}
.
The library reads such a file into memory, checks it and dumps it as text. This
package has what programs need that are linked with it.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libkova-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${library_package} (= ${PROJECT_VERSION})")
set(reference "")
if(KOVA_API_REFERENCE)
  set(reference "the reference of its functions, ")
endif()
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "library for KOVA scene files - development files
${about}
.
The library reads such a file into memory, checks it and dumps it as text. This
package has its headers, the static library, examples, the description of the
format, ${reference}and the files for CMake
and pkg-config.")

# What cpack does to the files before it packs them, and where that finds what it needs.
set(CPACK_KOVA_LIBRARY_PACKAGE ${library_package})
set(CPACK_KOVA_SOURCE_DIR "${PROJECT_SOURCE_DIR}")
set(CPACK_PROJECT_CONFIG_FILE "${CMAKE_CURRENT_LIST_DIR}/SourceDate.cmake")
set(CPACK_PRE_BUILD_SCRIPTS "${CMAKE_CURRENT_LIST_DIR}/StagedFiles.cmake")
include(CPack)
