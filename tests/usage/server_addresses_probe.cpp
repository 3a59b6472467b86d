#include <iostream>
#include <string>

#include "usage/server_addresses.h"

// Prints the product server and the test upload server at the start and again for each line of input.
int main() {
  std::string line;
  do std::cout << productServer() << ' ' << testUploadServer() << std::endl;
  while (std::getline(std::cin, line));
}
