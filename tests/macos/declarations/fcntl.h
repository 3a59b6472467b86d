#pragma once

// What <fcntl.h> of macOS declares in addition to Linux, for the type check.
#include_next <fcntl.h>

#define F_GETPATH 50
