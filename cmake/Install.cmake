include(CMakePackageConfigHelpers)

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/kova")
set(pkgconfig_dir "${CMAKE_INSTALL_LIBDIR}/pkgconfig")

install(TARGETS kbaudit)
install(TARGETS kova kova_shared EXPORT kovaTargets)
install(FILES ${PUBLIC_HEADERS} DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/kova")

install(EXPORT kovaTargets NAMESPACE kova:: DESTINATION "${package_dir}")
configure_package_config_file("${CMAKE_CURRENT_LIST_DIR}/kovaConfig.cmake.in" "${PROJECT_BINARY_DIR}/kovaConfig.cmake"
                              INSTALL_DESTINATION "${package_dir}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/kovaConfigVersion.cmake" COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/kovaConfig.cmake" "${PROJECT_BINARY_DIR}/kovaConfigVersion.cmake"
        DESTINATION "${package_dir}")

# Told relative to the .pc file, so that the tree can be installed with any prefix and moved later.
set(KOVA_PREFIX_FROM_PC "${CMAKE_INSTALL_PREFIX}")
cmake_path(RELATIVE_PATH KOVA_PREFIX_FROM_PC BASE_DIRECTORY "${CMAKE_INSTALL_PREFIX}/${pkgconfig_dir}")
configure_file("${CMAKE_CURRENT_LIST_DIR}/kova.pc.in" "${PROJECT_BINARY_DIR}/kova.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/kova.pc" DESTINATION "${pkgconfig_dir}")

install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/kbaudit" RENAME copyright)
install(FILES "${PROJECT_SOURCE_DIR}/docs/kbaudit.1" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" OPTIONAL)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/samples/" DESTINATION "${CMAKE_INSTALL_DATADIR}/kova/samples"
        FILES_MATCHING PATTERN "*.kb")
