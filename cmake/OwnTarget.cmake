if(PROJECT_IS_TOP_LEVEL)
  include(CheckPIESupported)
  check_pie_supported(LANGUAGES CXX)
endif()

# Other versions of the compilers warn of other things, which must not keep anybody from building.
set(KOVA_WARNINGS_AS_ERRORS "")
if("${CMAKE_CXX_COMPILER_ID} ${CMAKE_CXX_COMPILER_VERSION}" MATCHES "^(GNU 12|Clang 14)\\.")
  set(KOVA_WARNINGS_AS_ERRORS -Werror)
endif()

# Settings that every target of this project shares. A project that includes this one keeps its own say in hardening.
function(kova_own_target target)
  target_compile_features(${target} PRIVATE cxx_std_20)
  # The private headers, which are named from here: "reader/lists.h".
  target_include_directories(${target} PRIVATE "${PROJECT_SOURCE_DIR}")
  # Files of 2 GiB and more, also where `long` has 32 bits.
  target_compile_definitions(${target} PRIVATE _FILE_OFFSET_BITS=64)
  set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF POSITION_INDEPENDENT_CODE ON)
  if(KOVA_DEVELOPER)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wshadow ${KOVA_WARNINGS_AS_ERRORS})
  endif()
  # The same bytes wherever the sources lie; a debugger still finds them in a debug build.
  target_compile_options(${target} PRIVATE $<$<NOT:$<CONFIG:Debug>>:-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.>)
  if(PROJECT_IS_TOP_LEVEL)
    target_compile_options(
      ${target} PRIVATE -fstack-protector-strong
                        $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2>)
    if(CMAKE_EXECUTABLE_FORMAT STREQUAL "ELF")
      target_link_options(${target} PRIVATE LINKER:-z,relro,-z,now)
    endif()
  endif()
endfunction()
