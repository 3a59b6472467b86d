#include "ipc/notification_pipe.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "ipc/notification_commands.h"
#include "platform/descriptors.h"
#include "platform/log.h"

using platform::LogPriority;
using platform::systemLog;

int read_pipe(int descriptor, std::span<char> buffer) {
  const ssize_t count = ::read(descriptor, buffer.data(), buffer.size());
  const int error = errno;
  systemLog(LogPriority::Info, "read_pipe read pipe message : " + std::string(textIn(buffer)));
  if (count >= 0) return static_cast<int>(count);
  if (error == EAGAIN) return -error;
  systemLog(LogPriority::Error, "read_pipe read error. errno : " + std::to_string(error));
  return -1;
}

platform::FileDescriptor openWriteEnd(int reader) {
  struct stat status {};
  if (::fstat(reader, &status) != 0 || !S_ISFIFO(status.st_mode)) return {};
  return platform::reopen(reader, O_WRONLY | O_NONBLOCK);
}
