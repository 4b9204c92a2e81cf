# More than half of the time that a short run of kbaudit takes is spent on loading the shared C++ library. The program
# takes what it needs of it into itself, where the compiler has a static one. The C library stays shared: it is loaded
# fast, and its security fixes reach the program without a new build. Sanitizers have to see the shared libraries.
include(CheckLinkerFlag)
set(static_runtime -static-libstdc++ -static-libgcc LINKER:--gc-sections)
check_linker_flag(CXX "${static_runtime}" KOVA_HAS_STATIC_RUNTIME)
if(KOVA_HAS_STATIC_RUNTIME AND NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize")
  target_link_options(kbaudit PRIVATE "$<$<NOT:$<CONFIG:Debug>>:${static_runtime}>")
endif()
