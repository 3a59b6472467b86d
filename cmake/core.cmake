# The product folders. Linked to no toolkit: what the operating system gives is reached through platform/*.h alone.
add_library(tovalin_core STATIC
  ipc/command_pipe.cpp
)
