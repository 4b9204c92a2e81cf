set(CPACK_GENERATOR DEB)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_PACKAGE_NAME kbaudit)
set(CPACK_PACKAGE_CONTACT "the kbaudit authors")
set(CPACK_PACKAGE_DESCRIPTION "Checks every tag, size, count and index of a KOVA scene file, prints what is
wrong with it and a verdict, and dumps the scene as text. The library behind it
is included, with its headers.")
set(CPACK_RESOURCE_FILE_LICENSE "${PROJECT_SOURCE_DIR}/LICENSE")
set(CPACK_STRIP_FILES ON)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)

set(CPACK_KOVA_SOURCE_DIR "${PROJECT_SOURCE_DIR}")
set(CPACK_PROJECT_CONFIG_FILE "${CMAKE_CURRENT_LIST_DIR}/SourceDate.cmake")
set(CPACK_PRE_BUILD_SCRIPTS "${CMAKE_CURRENT_LIST_DIR}/StagedFiles.cmake")
include(CPack)
