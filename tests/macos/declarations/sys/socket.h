#pragma once

// What <sys/socket.h> of macOS declares in addition to Linux, for the type check.
#include_next <sys/socket.h>

#define SO_NWRITE 0x1024
