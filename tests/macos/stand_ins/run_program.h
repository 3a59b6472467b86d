#pragma once

#include <string>
#include <vector>

// Runs a program of PATH with these arguments and waits for its end. The agent's requests to the desktop go
// through such programs, so that tests can record them.
void standInRun(std::vector<std::string> command);
