# What every target of this tree is compiled with.
add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Wold-style-cast
                    -Woverloaded-virtual -Werror -fvisibility=hidden)
add_compile_definitions(_GNU_SOURCE)
# Includes are written from the root of the tree, so that every arrow between folders can be read off them.
include_directories("${PROJECT_SOURCE_DIR}")

if(TOVALIN_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()
if(TOVALIN_SANITIZERS)
  add_compile_options(-fsanitize=${TOVALIN_SANITIZERS} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${TOVALIN_SANITIZERS})
else()
  add_compile_options($<$<CONFIG:RelWithDebInfo>:-D_FORTIFY_SOURCE=2>)
endif()
