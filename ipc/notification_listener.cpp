#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <string>
#include <thread>

#include "app/nimbatrayAppDelegate.h"
#include "ipc/notification_commands.h"
#include "ipc/notification_pipe.h"
#include "ipc/readable.h"
#include "platform/application.h"
#include "platform/log.h"
#include "usage/usage_record.h"

using platform::LogPriority;
using platform::systemLog;
using namespace std::chrono_literals;

namespace {

constexpr std::chrono::milliseconds waitTime = 30ms;
constexpr int mostNoticeCallsWaiting = 64;

static_assert(record_format::message::size == notificationBufferSize);

void logStep(LogPriority priority, const std::string& text) {
  systemLog(priority, "-[nimbatrayAppDelegate notiThread] " + text);
}

void logFailure(const char* step) {
  logStep(LogPriority::Error, std::string(step) + ". errno : " + std::to_string(errno));
}

// Whatever stands at the path already is used as it is.
platform::FileDescriptor openNotificationPipe() {
  struct stat status {};
  if (::stat(notificationPipe, &status) != 0 && ::mkfifo(notificationPipe, 0666) != 0)
    logFailure("make pipe failed");
  // Whoever runs the main application must be able to write, whatever this process's umask.
  ::chmod(notificationPipe, 0666);
  platform::FileDescriptor pipe(::open(notificationPipe, O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
  if (!pipe.valid()) logFailure("open pipe error");
  return pipe;
}

// A regular file that was read to its end stays ready to be read, without anything to read.
bool isAtEndOfFile(int descriptor) {
  struct stat status {};
  return ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) &&
         ::lseek(descriptor, 0, SEEK_CUR) >= status.st_size;
}

bool isDevice(int descriptor) {
  struct stat status {};
  return ::fstat(descriptor, &status) == 0 && (S_ISCHR(status.st_mode) || S_ISBLK(status.st_mode));
}

}  // namespace

void nimbatrayAppDelegate::notiThread() {
  platform::FileDescriptor pipe = openNotificationPipe();
  if (pipe.valid()) listen(pipe.get());
  pipe.reset();
  std::remove(notificationPipe);
}

void nimbatrayAppDelegate::listen(int pipe) {
  std::array<char, notificationBufferSize> buffer{};
  ShownNotices shown;
  if (read_pipe(pipe, buffer) != 0) {
    logStep(LogPriority::Info, "Exist pipe message!");
    dispatch(buffer, shown);
  }
  const platform::FileDescriptor ownEnd = holdOpenForWriting(pipe);
  while (bThreadRun) {
    // Whoever floods the pipe finds it full, and not this process's memory.
    if (noticeCallsWaiting >= mostNoticeCallsWaiting) {
      std::this_thread::sleep_for(waitTime);
      continue;
    }
    const int ready = waitUntilReadable(pipe, waitTime);
    if (ready == -1) return logFailure("pipe select error");
    if (ready == 0) continue;
    if (isAtEndOfFile(pipe)) {
      std::this_thread::sleep_for(waitTime);
      continue;
    }
    buffer.fill('\0');
    const int count = read_pipe(pipe, buffer);
    if (count != 0) dispatch(buffer, shown);
    // What is no FIFO is always ready: a folder gives nothing, and a device may never end.
    if (!ownEnd.valid() && (count <= 0 || isDevice(pipe))) std::this_thread::sleep_for(waitTime);
  }
}

void nimbatrayAppDelegate::dispatch(std::span<const char> buffer, ShownNotices& shown) {
  const auto onMainThread = [this](void (nimbatrayAppDelegate::*method)()) {
    ++noticeCallsWaiting;
    platform::Application::sharedApplication().performOnMainThread([this, method] {
      --noticeCallsWaiting;
      (this->*method)();
    });
  };
  const std::string_view text = textIn(buffer);
  switch (notificationActionFor(text, shown)) {
    case NotificationAction::NotificationOn:
      return onMainThread(&nimbatrayAppDelegate::notificationOn);
    case NotificationAction::NotificationOff:
      return onMainThread(&nimbatrayAppDelegate::notificationOff);
    case NotificationAction::NoticeEnumerateOn:
      return onMainThread(&nimbatrayAppDelegate::noticeEnumerateOn);
    case NotificationAction::NoticeEnumerateOff:
      return onMainThread(&nimbatrayAppDelegate::noticeEnumerateOff);
    case NotificationAction::UnknownCommand:
      return systemLog(LogPriority::Error, "unknown command " + std::string(text));
    case NotificationAction::CollectData:
      return TvlGetCollectData(CollectMessage(buffer));
    case NotificationAction::None:
      return;
  }
}
