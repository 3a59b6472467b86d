#pragma once

#include <string>
#include <vector>

// Runs a program of PATH with these arguments and waits for its end. What the agent asks of the desktop goes
// to such programs here, so that the tests see it.
void standInRun(std::vector<std::string> command);
