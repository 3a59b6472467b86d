#include <iostream>
#include <string>

#include "platform/bundle.h"

// Prints the path of its own bundle, now and again for each line it is sent.
int main() {
  std::string line;
  do {
    const auto bundle = platform::Bundle::mainBundle();
    std::cout << (bundle ? bundle->bundlePath() : "(none)") << std::endl;
  } while (std::getline(std::cin, line));
}
