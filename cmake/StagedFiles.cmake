# Run by cpack on the files that go into the package. Debian keeps manual pages compressed, and folders must be open to
# everybody whatever the umask of whoever packs.
file(GLOB_RECURSE manuals "${CPACK_TEMPORARY_INSTALL_DIRECTORY}/kbaudit.1")
foreach(manual IN LISTS manuals)
  execute_process(COMMAND gzip -9n "${manual}" COMMAND_ERROR_IS_FATAL ANY)
endforeach()
file(CHMOD_RECURSE "${CPACK_TEMPORARY_INSTALL_DIRECTORY}" DIRECTORY_PERMISSIONS
     OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
