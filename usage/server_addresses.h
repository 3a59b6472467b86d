#pragma once

#include <string>

// The origins of the product's servers, such as "https://www.tovalin.example", without a trailing slash.
// Returns the value of the given key in the agent's Info.plist as of the agent's start, so that a bundle can
// use other servers without a rebuild; without that key, the address set at build time. Thread-safe.

// Key: "TovalinProductServer".
[[nodiscard]] std::string productServer();

// Key: "TovalinTestUploadServer".
[[nodiscard]] std::string testUploadServer();
