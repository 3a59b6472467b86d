#include <cstdio>

#include "usage/server_addresses.h"

// Prints the product server and the test upload server.
int main() {
  std::printf("%s %s\n", productServer().c_str(), testUploadServer().c_str());
}
