# What every target of this tree is compiled with.
add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Wold-style-cast
                    -Woverloaded-virtual -Werror -fvisibility=hidden)
add_compile_definitions(_GNU_SOURCE)
# Includes are written from the root of the tree, so that every arrow between folders can be read off them.
include_directories("${PROJECT_SOURCE_DIR}")

if(TOVALIN_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()
if(TOVALIN_COVERAGE)
  # Counted by several threads and processes at once.
  add_compile_options(--coverage -fprofile-update=atomic -fprofile-abs-path)
  add_link_options(--coverage)
  # Also where a process ends at once.
  add_library(tovalin_counts STATIC tests/support/counts_at_exit.cpp)
  target_link_options(tovalin_counts INTERFACE LINKER:--wrap=_exit,--wrap=_Exit,--wrap=kill,-u,__wrap__exit)
  link_libraries(tovalin_counts)
endif()
if(TOVALIN_SANITIZERS)
  add_compile_options(-fsanitize=${TOVALIN_SANITIZERS} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${TOVALIN_SANITIZERS})
else()
  add_compile_options($<$<CONFIG:RelWithDebInfo>:-D_FORTIFY_SOURCE=2>)
endif()
