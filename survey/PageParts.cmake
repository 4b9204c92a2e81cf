# Makes page_parts.h of the page's sources: the text before and behind the data, with the hashes of style and
# script in the policy.

# kova_base64_of_sha256(RESULT TEXT): CMake gives the hash in hexadecimal, a policy needs it in base64.
function(kova_base64_of_sha256 result text)
  set(alphabet "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/")
  string(SHA256 digits "${text}")
  string(APPEND digits "00") # 33 bytes, 11 groups of three
  set(base64 "")
  foreach(at RANGE 0 60 6)
    string(SUBSTRING "${digits}" ${at} 6 group)
    foreach(shift IN ITEMS 18 12 6 0)
      math(EXPR value "0x${group} >> ${shift} & 63")
      string(SUBSTRING "${alphabet}" ${value} 1 character)
      string(APPEND base64 "${character}")
    endforeach()
  endforeach()
  string(REGEX REPLACE "A$" "=" base64 "${base64}")
  set(${result} "${base64}" PARENT_SCOPE)
endfunction()

function(kova_make_page_parts header)
  foreach(part IN ITEMS page.html page.css page_text.js page.js)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/${part}")
  endforeach()
  file(READ page.html page)
  file(READ page.css style)
  file(READ page_text.js helpers)
  file(READ page.js script)
  string(PREPEND script "${helpers}")
  kova_base64_of_sha256(style_hash "${style}")
  kova_base64_of_sha256(script_hash "${script}")
  string(REPLACE "@STYLE_HASH@" "${style_hash}" page "${page}")
  string(REPLACE "@SCRIPT_HASH@" "${script_hash}" page "${page}")
  string(REPLACE "@STYLE@" "${style}" page "${page}")
  string(REPLACE "@SCRIPT@" "${script}" page "${page}")
  string(FIND "${page}" "@DATA@" data)
  string(SUBSTRING "${page}" 0 ${data} begin)
  math(EXPR behind "${data} + 6")
  string(SUBSTRING "${page}" ${behind} -1 end)
  file(CONFIGURE OUTPUT "${header}" @ONLY CONTENT [[
/// Made by PageParts.cmake.
#pragma once

namespace kova::survey {

inline constexpr const char *PAGE_BEGIN = R"PAGE(@begin@)PAGE";
inline constexpr const char *PAGE_END = R"PAGE(@end@)PAGE";

} // namespace kova::survey
]])
endfunction()
