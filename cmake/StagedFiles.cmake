# Run by cpack on the files that go into the packages, one folder for each. Each package gets a changelog; Debian keeps
# that and manual pages compressed. Folders must be open to everybody whatever the umask of whoever packs.
function(compress file)
  execute_process(COMMAND gzip -9nf "${file}" COMMAND_ERROR_IS_FATAL ANY)
endfunction()

set(staged "${CPACK_TEMPORARY_INSTALL_DIRECTORY}")
file(GLOB_RECURSE manuals "${staged}/*.1")
list(FILTER manuals INCLUDE REGEX "/man1/")
foreach(manual IN LISTS manuals)
  compress("${manual}")
endforeach()

# The time is SOURCE_DATE_EPOCH, which SourceDate.cmake has set.
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
file(GLOB_RECURSE copyrights "${staged}/copyright")
foreach(copyright IN LISTS copyrights)
  cmake_path(GET copyright PARENT_PATH folder)
  file(WRITE "${folder}/changelog" "kbaudit (${CPACK_PACKAGE_VERSION}) unstable; urgency=medium

  * Version ${CPACK_PACKAGE_VERSION}. CHANGELOG.md, in the package kbaudit, lists the changes.

 -- ${CPACK_PACKAGE_CONTACT}  ${date}
")
  compress("${folder}/changelog")
endforeach()

file(COPY "${CMAKE_CURRENT_LIST_DIR}/debian/lintian-overrides" DESTINATION "${staged}/library/usr/share/lintian"
     FILE_PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
file(MAKE_DIRECTORY "${staged}/library/usr/share/lintian/overrides")
file(RENAME "${staged}/library/usr/share/lintian/lintian-overrides"
     "${staged}/library/usr/share/lintian/overrides/${CPACK_KOVA_LIBRARY_PACKAGE}")

file(GLOB_RECURSE folders LIST_DIRECTORIES ON "${staged}/*")
foreach(folder IN LISTS folders)
  if(IS_DIRECTORY "${folder}" AND NOT IS_SYMLINK "${folder}")
    file(CHMOD "${folder}" DIRECTORY_PERMISSIONS
         OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
  endif()
endforeach()
