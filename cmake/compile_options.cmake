# Line tables suffice for backtraces. Full debug information, as in the debug preset, takes a third of the compile time.
string(REPLACE "-g" "-g1" CMAKE_CXX_FLAGS_RELWITHDEBINFO "${CMAKE_CXX_FLAGS_RELWITHDEBINFO}")

# Compile options for all targets.
add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Wold-style-cast
                    -Woverloaded-virtual -Werror -fvisibility=hidden)
add_compile_definitions(_GNU_SOURCE)
# Excludes source files from unity builds, because some programs link their own implementation instead, or only some of a
# library's files.
function(compiled_alone)
  set_source_files_properties(${ARGN} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
endfunction()
if(CMAKE_UNITY_BUILD AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # gcc warns about a type with internal linkage in a merged source file.
  add_compile_options(-Wno-subobject-linkage)
endif()
# Includes are relative to the root of the tree, so that they show the dependencies between folders.
include_directories("${PROJECT_SOURCE_DIR}")

# Hardening: stack protectors, checked library calls, branch targets for processors that check them, and relocations that are
# resolved at start and then read-only.
include(CheckCXXCompilerFlag)
check_cxx_compiler_flag(-fcf-protection TOVALIN_BRANCH_TARGETS)
add_compile_options(-fstack-protector-strong $<$<BOOL:${TOVALIN_BRANCH_TARGETS}>:-fcf-protection>)
add_compile_definitions(_GLIBCXX_ASSERTIONS)
if(NOT APPLE)  # Apple's linker lacks these options and always creates position-independent programs
  add_link_options(LINKER:-z,relro,-z,now)
  add_link_options($<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:-pie>)
endif()
# Set here, because CMake's POSITION_INDEPENDENT_CODE compiles libraries and programs differently, so that they could not share
# precompiled headers.
add_compile_options(-fPIE)

if(TOVALIN_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()
if(TOVALIN_COVERAGE)
  # Counters must be atomic: several threads and processes update them.
  add_compile_options(--coverage -fprofile-update=atomic -fprofile-abs-path)
  add_link_options(--coverage)
  # Writes the counters even if a process ends with _exit, _Exit or kill.
  add_library(tovalin_counts STATIC tests/harness/counts_at_exit.cpp)
  target_link_options(tovalin_counts INTERFACE LINKER:--wrap=_exit,--wrap=_Exit,--wrap=kill,-u,__wrap__exit)
  link_libraries(tovalin_counts)
endif()
if(TOVALIN_SANITIZERS)
  add_compile_options(-fsanitize=${TOVALIN_SANITIZERS} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${TOVALIN_SANITIZERS})
else()
  # _FORTIFY_SOURCE requires optimisation, and the sanitizers replace the functions that it checks.
  add_compile_options($<$<CONFIG:RelWithDebInfo>:-D_FORTIFY_SOURCE=3>)
endif()
