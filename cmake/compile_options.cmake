# Lines are all that a backtrace needs; the debug preset has all debug information, which takes a third of the compiler's time.
string(REPLACE "-g" "-g1" CMAKE_CXX_FLAGS_RELWITHDEBINFO "${CMAKE_CXX_FLAGS_RELWITHDEBINFO}")

# What every target of this tree is compiled with.
add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Wold-style-cast
                    -Woverloaded-virtual -Werror -fvisibility=hidden)
add_compile_definitions(_GNU_SOURCE)
# Some programs link an implementation of their own instead of these files', or two libraries of which only one's are used.
function(compiled_alone)
  set_source_files_properties(${ARGN} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
endfunction()
if(CMAKE_UNITY_BUILD)
  # gcc gives it for a type that a source file of a merged one keeps to itself.
  add_compile_options(-Wno-subobject-linkage)
endif()
# Includes are written from the root of the tree, so that every arrow between folders can be read off them.
include_directories("${PROJECT_SOURCE_DIR}")

# Hardening: checked stack frames and library calls, branch targets marked for processors that check them, and relocations
# that are resolved at start and read-only from then on.
include(CheckCXXCompilerFlag)
check_cxx_compiler_flag(-fcf-protection TOVALIN_BRANCH_TARGETS)
add_compile_options(-fstack-protector-strong $<$<BOOL:${TOVALIN_BRANCH_TARGETS}>:-fcf-protection>)
add_compile_definitions(_GLIBCXX_ASSERTIONS)
if(NOT APPLE)  # whose linker knows no such options and makes position-independent programs anyway
  add_link_options(LINKER:-z,relro,-z,now)
  add_link_options($<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:-pie>)
endif()
# By hand, because CMake's property would compile libraries and programs differently, which then could share no precompiled headers.
add_compile_options(-fPIE)

if(TOVALIN_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()
if(TOVALIN_COVERAGE)
  # Counted by several threads and processes at once.
  add_compile_options(--coverage -fprofile-update=atomic -fprofile-abs-path)
  add_link_options(--coverage)
  # Also where a process ends at once.
  add_library(tovalin_counts STATIC tests/harness/counts_at_exit.cpp)
  target_link_options(tovalin_counts INTERFACE LINKER:--wrap=_exit,--wrap=_Exit,--wrap=kill,-u,__wrap__exit)
  link_libraries(tovalin_counts)
endif()
if(TOVALIN_SANITIZERS)
  add_compile_options(-fsanitize=${TOVALIN_SANITIZERS} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${TOVALIN_SANITIZERS})
else()
  # It works in optimised builds alone, and the sanitizers replace the calls that it checks.
  add_compile_options($<$<CONFIG:RelWithDebInfo>:-D_FORTIFY_SOURCE=3>)
endif()
