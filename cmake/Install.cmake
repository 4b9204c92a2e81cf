include(CMakePackageConfigHelpers)

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/kova")
set(pkgconfig_dir "${CMAKE_INSTALL_LIBDIR}/pkgconfig")

install(TARGETS kbaudit)
install(TARGETS kova kova_static kova_shared EXPORT kovaTargets)
install(FILES ${PUBLIC_HEADERS} DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/kova")

install(EXPORT kovaTargets NAMESPACE kova:: DESTINATION "${package_dir}")
configure_package_config_file("${CMAKE_CURRENT_LIST_DIR}/kovaConfig.cmake.in" "${PROJECT_BINARY_DIR}/kovaConfig.cmake"
                              INSTALL_DESTINATION "${package_dir}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/kovaConfigVersion.cmake" COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/kovaConfig.cmake" "${PROJECT_BINARY_DIR}/kovaConfigVersion.cmake"
        DESTINATION "${package_dir}")

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
install(FILES "${PROJECT_BINARY_DIR}/kova.pc" DESTINATION "${pkgconfig_dir}")

install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/kbaudit" RENAME copyright)
install(FILES "${PROJECT_SOURCE_DIR}/docs/kbaudit.1" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" OPTIONAL)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/samples/" DESTINATION "${CMAKE_INSTALL_DATADIR}/kova/samples"
        FILES_MATCHING PATTERN "*.kb")
