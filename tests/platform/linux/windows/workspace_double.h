#pragma once

#include <string>
#include <vector>

// Returns the addresses that the program under test has opened. The fake Workspace records them instead of
// starting a browser.
[[nodiscard]] std::vector<std::string>& openedAddresses();
