// recorder: fakes an outside command, under whose name it is linked or copied. Reports its arguments to the
// test's timeline and exits with the status that the timeline returns; with 0 if no timeline listens.

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

namespace {

std::string timelinePath() {
  const char* path = std::getenv("TOVALIN_TIMELINE");
  return path != nullptr ? path : "/tmp/timeline.sock";
}

int connectTo(const std::string& path) {
  const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  return ::connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 ? fd : -1;
}

// The search path, the program's name and its arguments, each terminated by a NUL.
std::string record(int argc, char** argv) {
  const char* searchPath = std::getenv("PATH");
  std::string result = searchPath != nullptr ? searchPath : "";
  result += '\0';
  const std::string program = argv[0];
  result += program.substr(program.rfind('/') + 1) + '\0';
  for (int i = 1; i < argc; ++i) result += std::string(argv[i]) + '\0';
  return result;
}

bool sendAll(int fd, const std::string& bytes) {
  std::size_t sent = 0;
  while (sent < bytes.size()) {
    const ssize_t count = ::send(fd, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
    if (count < 0) return false;
    sent += static_cast<std::size_t>(count);
  }
  return ::shutdown(fd, SHUT_WR) == 0;
}

}  // namespace

int main(int argc, char** argv) {
  const int timeline = connectTo(timelinePath());
  unsigned char status = 0;
  if (timeline < 0 || !sendAll(timeline, record(argc, argv)) || ::read(timeline, &status, 1) != 1) return 0;
  return status;
}
