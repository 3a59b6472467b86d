#pragma once

#include <string>

// Where the product's servers are, each an origin such as "https://www.tovalin.example", without a slash at
// its end: the key of the agent's own Info.plist, so that a bundle can be pointed elsewhere without being
// built anew; else the address that the agent was built with. As it was when the agent was started; any
// thread.

// Key "TovalinProductServer".
[[nodiscard]] std::string productServer();

// Key "TovalinTestUploadServer".
[[nodiscard]] std::string testUploadServer();
