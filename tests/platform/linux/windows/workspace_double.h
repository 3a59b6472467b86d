#pragma once

#include <string>
#include <vector>

// The addresses that the program under test has opened. This workspace stands in for the real one, which
// would look for a browser.
[[nodiscard]] std::vector<std::string>& openedAddresses();
