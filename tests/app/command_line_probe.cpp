#include <cstdio>
#include <string_view>
#include <vector>

#include "app/command_line.h"

// Judges its arguments as the agent does; status 100 when the agent would go on.
int main(int argc, char** argv) {
  const std::vector<std::string_view> arguments(argv + 1, argv + argc);
  return handleArguments(arguments).value_or(100);
}
