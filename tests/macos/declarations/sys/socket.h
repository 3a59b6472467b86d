#pragma once

// What <sys/socket.h> of macOS has beyond the system's own here, for the type check alone.
#include_next <sys/socket.h>

#define SO_NWRITE 0x1024
