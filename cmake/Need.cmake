# kova_need(OPTION NAME:PACKAGE...): finds what a part of the project needs, or says how to go on without it. A macro:
# what is found is known in the folder that asks.
macro(kova_need option)
  foreach(needed IN ITEMS ${ARGN})
    string(REPLACE ":" ";" needed "${needed}")
    list(POP_FRONT needed name package)
    find_package(${name} QUIET)
    if(NOT ${name}_FOUND)
      message(FATAL_ERROR "${name} is missing. Install it (Debian: ${package}) or configure with -D${option}=OFF.")
    endif()
  endforeach()
endmacro()
