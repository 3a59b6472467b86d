// web_view_double: fakes the hidden web view. Reports each address that it receives to the test's timeline as
// a run of "beacon", and exits at the end of its input.

#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <string>

#include "tests/harness/processes/child_process.h"

int main() {
  std::array<char, 65536> packet;
  ssize_t size = 0;
  while ((size = ::read(STDIN_FILENO, packet.data(), packet.size())) > 0) {
    std::string address(packet.data(), static_cast<std::size_t>(size));
    if (address.ends_with('\n')) address.pop_back();
    test_support::ChildProcess beacon;
    if (!beacon.start({"/tmp/outside commands/beacon", address}, {}) || !beacon.wait()) return 1;
  }
}
