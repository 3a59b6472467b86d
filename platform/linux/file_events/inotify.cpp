#include "platform/linux/file_events/inotify.h"

#include <sys/inotify.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <span>

namespace platform {
namespace {

void parse(std::span<const char> bytes, const std::function<void(const Inotify::Notice&)>& take) {
  while (bytes.size() >= sizeof(inotify_event)) {
    inotify_event header{};
    std::memcpy(&header, bytes.data(), sizeof header);
    // The name is padded with NULs. Events on the watched file itself have no name (len is 0).
    const char* name = bytes.data() + sizeof header;
    take({header.wd, header.mask, {name, ::strnlen(name, header.len)}});
    bytes = bytes.subspan(sizeof header + header.len);
  }
}

}  // namespace

Inotify::Inotify() : descriptor_(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK)) {}

int Inotify::add(const std::string& path, std::uint32_t mask) {
  return ::inotify_add_watch(descriptor_.get(), path.c_str(), mask);
}

void Inotify::remove(int watch) {
  ::inotify_rm_watch(descriptor_.get(), watch);
}

void Inotify::drain(const std::function<void(const Notice& notice)>& take) {
  int waiting = 0;
  if (::ioctl(descriptor_.get(), FIONREAD, &waiting) != 0) return;
  std::array<char, std::size_t{16} * 1024> buffer{};
  while (waiting > 0) {
    const ssize_t count = ::read(descriptor_.get(), buffer.data(), buffer.size());
    if (count <= 0) return;
    parse(std::span(buffer).first(static_cast<std::size_t>(count)), take);
    waiting -= static_cast<int>(count);
  }
}

}  // namespace platform
