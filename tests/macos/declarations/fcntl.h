#pragma once

// What <fcntl.h> of macOS has beyond the system's own here, for the type check alone.
#include_next <fcntl.h>

#define F_GETPATH 50
