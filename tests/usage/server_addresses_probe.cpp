#include <iostream>
#include <string>

#include "usage/server_addresses.h"

// Prints the product server and the test upload server, now and again for each line it is sent.
int main() {
  std::string line;
  do std::cout << productServer() << ' ' << testUploadServer() << std::endl;
  while (std::getline(std::cin, line));
}
