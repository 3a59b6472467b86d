#include <cstdio>
#include <string_view>
#include <vector>

#include "app/command_line.h"

// Handles its arguments like the agent. Exits with 100 if the agent would start.
int main(int argc, char** argv) {
  const std::vector<std::string_view> arguments(argv + 1, argv + argc);
  return handleArguments(arguments).value_or(100);
}
