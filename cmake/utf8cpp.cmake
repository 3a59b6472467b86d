# The headers of utf8cpp: link the target tovalin_utf8cpp. The name of the imported target depends on utf8cpp's version.
find_package(utf8cpp QUIET)
add_library(tovalin_utf8cpp INTERFACE)
foreach(target utf8cpp::utf8cpp utf8::cpp utf8cpp)
  if(TARGET ${target})
    target_link_libraries(tovalin_utf8cpp INTERFACE ${target})
    return()
  endif()
endforeach()
message(FATAL_ERROR "utf8cpp was not found. Install libutfcpp-dev (Debian) or utf8cpp (Homebrew), or set utf8cpp_DIR to the folder of "
  "its utf8cppConfig.cmake.")
