include(CMakePackageConfigHelpers)

# Components, each of which is a Debian package of its own: program, library (the shared one, for programs that are
# linked with it), development, and one for each program that is built only if it is asked for.
set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/kova")
set(pkgconfig_dir "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
set(doc_dir "${CMAKE_INSTALL_DATAROOTDIR}/doc")

# What a document says to those who have the sources goes, what it says to those who have installed the programs stays,
# and so do its examples, with the names of the programs.
function(kova_as_installed text)
  set(rest "${${text}}")
  set(kept "")
  string(FIND "${rest}" "<!-- sources -->\n" begin)
  while(begin GREATER_EQUAL 0)
    string(FIND "${rest}" "<!-- end -->\n" end)
    math(EXPR behind "${end} + 13")
    string(SUBSTRING "${rest}" 0 ${begin} before)
    string(SUBSTRING "${rest}" ${behind} -1 rest)
    string(APPEND kept "${before}")
    string(FIND "${rest}" "<!-- sources -->\n" begin)
  endwhile()
  string(APPEND kept "${rest}")
  string(REGEX REPLACE "<!-- installed:\n([^>]*)\n-->\n" "\\1\n" kept "${kept}")
  string(REGEX REPLACE "building kb[a-z]+ \\.\\.\\. [0-9]+ s\n" "" kept "${kept}")
  foreach(names IN ITEMS run:kbaudit survey:kbsurvey repair:kbrepair json:kbjson diff:kbdiff)
    string(REGEX MATCH "(.*):(.*)" names "${names}")
    string(REPLACE "scripts/${CMAKE_MATCH_1}" "${CMAKE_MATCH_2}" kept "${kept}")
  endforeach()
  set(${text} "${kept}" PARENT_SCOPE)
endfunction()

# Puts a document as it is installed, with the links that lead to other documents of the list. Others, to what is in
# another package or only among the sources, become text with the name of the file.
function(kova_install_form document to)
  file(READ "${PROJECT_SOURCE_DIR}/${document}" rest)
  kova_as_installed(rest)
  cmake_path(GET document PARENT_PATH folder)
  set(text "")
  while("${rest}" MATCHES "\\[([^][]*)\\]\\(([^()#: ]+)(#[^()]*)?\\)")
    set(link "${CMAKE_MATCH_0}")
    set(shown "${CMAKE_MATCH_1}")
    set(path "${CMAKE_MATCH_2}")
    cmake_path(SET target NORMALIZE "${folder}/${path}")
    string(REGEX REPLACE "^/" "" target "${target}")
    string(FIND "${rest}" "${link}" at)
    string(SUBSTRING "${rest}" 0 ${at} before)
    string(LENGTH "${link}" length)
    math(EXPR at "${at} + ${length}")
    string(SUBSTRING "${rest}" ${at} -1 rest)
    if(NOT "${target}" IN_LIST ARGN)
      set(link "${shown}")
      cmake_path(GET target FILENAME name)
      if(NOT shown MATCHES "${name}")
        string(APPEND link " (${path})")
      endif()
    endif()
    string(APPEND text "${before}${link}")
  endwhile()
  file(WRITE "${to}" "${text}${rest}")
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/${document}")
endfunction()

# The documents of a program keep their folders, so that they find each other.
function(kova_install_documents program component)
  foreach(document IN LISTS ARGN)
    cmake_path(GET document PARENT_PATH folder)
    set(file "${PROJECT_SOURCE_DIR}/${document}")
    if(document MATCHES "\\.md$")
      set(file "${PROJECT_BINARY_DIR}/documents/${program}/${document}")
      kova_install_form("${document}" "${file}" ${ARGN})
    endif()
    install(FILES "${file}" DESTINATION "${doc_dir}/${program}/${folder}" COMPONENT ${component})
  endforeach()
endfunction()

# --- The program ---

install(TARGETS kbaudit COMPONENT program)
install(FILES docs/kbaudit.1 DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT program)
set(completions_dir "${CMAKE_INSTALL_DATADIR}/bash-completion/completions")
install(FILES driver/completion.bash DESTINATION "${completions_dir}" RENAME kbaudit COMPONENT program)
kova_install_documents(
  kbaudit program README.md CHANGELOG.md SECURITY.md docs/findings.md docs/format.md docs/kbsurvey.png
  docs/performance.md docs/recipes.md docs/robustness.md docs/tour.md)
install(DIRECTORY samples/ DESTINATION "${CMAKE_INSTALL_DATADIR}/kova/samples" COMPONENT program
        FILES_MATCHING PATTERN "*.kb")

# --- The libraries ---

install(TARGETS kova kova_static kova_shared EXPORT kovaTargets RUNTIME COMPONENT library LIBRARY COMPONENT library
        NAMELINK_COMPONENT development ARCHIVE COMPONENT development)
install(FILES ${PUBLIC_HEADERS} DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/kova" COMPONENT development)

install(EXPORT kovaTargets NAMESPACE kova:: DESTINATION "${package_dir}" COMPONENT development)
configure_package_config_file("${CMAKE_CURRENT_LIST_DIR}/kovaConfig.cmake.in" "${PROJECT_BINARY_DIR}/kovaConfig.cmake"
                              INSTALL_DESTINATION "${package_dir}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/kovaConfigVersion.cmake" COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/kovaConfig.cmake" "${PROJECT_BINARY_DIR}/kovaConfigVersion.cmake"
        DESTINATION "${package_dir}" COMPONENT development)

# Told relative to the .pc file, so that the tree can be installed with any prefix and moved later. A folder that was
# configured as an absolute one stays absolute: it does not move with the prefix.
foreach(kind IN ITEMS LIBDIR INCLUDEDIR)
  set(KOVA_PC_${kind} "${CMAKE_INSTALL_${kind}}")
  if(NOT IS_ABSOLUTE "${CMAKE_INSTALL_${kind}}")
    set(KOVA_PC_${kind} "\${prefix}/${CMAKE_INSTALL_${kind}}")
  endif()
endforeach()
set(KOVA_PC_PREFIX "${CMAKE_INSTALL_PREFIX}")
if(NOT IS_ABSOLUTE "${pkgconfig_dir}")
  cmake_path(RELATIVE_PATH KOVA_PC_PREFIX BASE_DIRECTORY "${CMAKE_INSTALL_PREFIX}/${pkgconfig_dir}")
  string(PREPEND KOVA_PC_PREFIX "\${pcfiledir}/")
endif()
configure_file("${CMAKE_CURRENT_LIST_DIR}/kova.pc.in" "${PROJECT_BINARY_DIR}/kova.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/kova.pc" DESTINATION "${pkgconfig_dir}" COMPONENT development)

install(FILES examples/CMakeLists.txt examples/objects.cpp examples/triangles.cpp examples/color.cpp
        DESTINATION "${doc_dir}/libkova-dev/examples" COMPONENT development)
kova_install_documents(libkova-dev development docs/format.md)
if(KOVA_API_REFERENCE)
  install(DIRECTORY "${PROJECT_BINARY_DIR}/api/" DESTINATION "${doc_dir}/libkova-dev/html" COMPONENT development)
endif()

# --- The programs that are built only if they are asked for ---

# The program, its manual page, the completion of its command line, and its documents. The sources are in the folder
# with the name of the component.
function(kova_install_program program component)
  if(NOT TARGET ${program})
    return()
  endif()
  install(TARGETS ${program} COMPONENT ${component})
  install(FILES docs/${program}.1 DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT ${component})
  install(FILES ${component}/completion.bash DESTINATION "${completions_dir}" RENAME ${program} COMPONENT ${component})
  kova_install_documents(${program} ${component} ${ARGN})
  install(FILES LICENSE DESTINATION "${doc_dir}/${program}" RENAME copyright COMPONENT ${component})
endfunction()
kova_install_program(kbsurvey survey docs/survey.md docs/report.md survey/report.schema.json)
kova_install_program(kbrepair repair docs/repair.md)
kova_install_program(kbjson json docs/json.md docs/tools.md)
kova_install_program(kbdiff diff docs/diff.md diff/diff.schema.json)
if(TARGET kbjson)
  foreach(file IN ITEMS kbjson.schema.json kova.ksy kova.hexpat kova.magic kova.xml)
    install(FILES "${PROJECT_BINARY_DIR}/json/${file}" DESTINATION "${CMAKE_INSTALL_DATADIR}/kova" COMPONENT json)
  endforeach()
endif()

foreach(package IN ITEMS kbaudit:program libkova${PROJECT_VERSION_MAJOR}:library libkova-dev:development)
  string(REGEX MATCH "(.*):(.*)" package "${package}")
  install(FILES LICENSE DESTINATION "${doc_dir}/${CMAKE_MATCH_1}" RENAME copyright COMPONENT ${CMAKE_MATCH_2})
endforeach()
