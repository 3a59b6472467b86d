#pragma once

// Process-wide state. Written by the main thread only.

// The path of the main application's bundle, which contains the agent's: absolute and NUL-terminated. Empty
// until the launch has set it, constant afterwards. The size is frozen: doc/compatibility.md.
extern char gBundlePath[1024];

// Whether the last request to the product server succeeded.
extern bool isNetworkOnline;
