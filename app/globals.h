#pragma once

// The two facts about the process that every folder may read. Both are written by the main thread alone.

// The main application's bundle, around the agent's own: an absolute path, NUL-terminated; empty until launch
// has derived it, unchanged afterwards.
extern char gBundlePath[1024];

// Whether the product server answered when it was last asked.
extern bool isNetworkOnline;
