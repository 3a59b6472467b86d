#include <iostream>
#include <string>

#include "platform/bundle.h"

// Prints the path of its bundle at the start and again for each line of input.
int main() {
  std::string line;
  do {
    const auto bundle = platform::Bundle::mainBundle();
    std::cout << (bundle ? bundle->bundlePath() : "(none)") << std::endl;
  } while (std::getline(std::cin, line));
}
