#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <thread>

#include "app/nimbatrayAppDelegate.h"
#include "ipc/notice_calls.h"
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

// Frozen: doc/compatibility.md.
constexpr std::chrono::milliseconds waitTime = 30ms;

static_assert(record_format::message::size == notificationBufferSize);

void logStep(LogPriority priority, const std::string& text) {
  systemLog(priority, "-[nimbatrayAppDelegate notiThread] " + text);
}

void logFailure(const char* step) {
  logStep(LogPriority::Error, std::string(step) + ". errno : " + std::to_string(errno));
}

// Uses a file that already exists at the path, whatever its type.
platform::FileDescriptor openNotificationPipe() {
  struct stat status {};
  if (::stat(notificationPipe, &status) != 0 && ::mkfifo(notificationPipe, 0666) != 0)
    logFailure("make pipe failed");
  // Independent of the umask: the main application may run as another user and must be able to write.
  ::chmod(notificationPipe, 0666);
  platform::FileDescriptor pipe(::open(notificationPipe, O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
  if (!pipe.valid()) logFailure("open pipe error");
  return pipe;
}

// select(2) reports a regular file as readable even at its end.
bool isAtEndOfFile(int descriptor) {
  struct stat status {};
  return ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) &&
         ::lseek(descriptor, 0, SEEK_CUR) >= status.st_size;
}

bool isDevice(int descriptor) {
  struct stat status {};
  return ::fstat(descriptor, &status) == 0 && (S_ISCHR(status.st_mode) || S_ISBLK(status.st_mode));
}

void request(NotificationAction call, NoticeCalls& calls) {
  if (calls.request(call) != NoticeBacklog::Verdict::BeginMerging) return;
  logStep(LogPriority::Error, std::to_string(NoticeBacklog::maxWaiting) +
                                  " notice calls wait for the main thread; merging further ones");
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
  const auto calls = std::make_shared<NoticeCalls>(
      [](std::function<void()> work) {
        platform::Application::sharedApplication().performOnMainThread(std::move(work));
      },
      [this](NotificationAction call) { runNoticeCall(call); });
  if (read_pipe(pipe, buffer) != 0) {
    logStep(LogPriority::Info, "Exist pipe message!");
    dispatch(buffer, shown, *calls);
  }
  const platform::FileDescriptor writeEnd = openWriteEnd(pipe);
  while (bThreadRun) {
    const Readiness readiness = waitUntilReadable(pipe, waitTime);
    if (readiness == Readiness::Failed) return logFailure("pipe select error");
    if (readiness == Readiness::TimedOut) continue;
    if (isAtEndOfFile(pipe)) {
      std::this_thread::sleep_for(waitTime);
      continue;
    }
    buffer.fill('\0');
    const int count = read_pipe(pipe, buffer);
    if (count != 0) dispatch(buffer, shown, *calls);
    // select(2) always reports files other than FIFOs as readable: a folder has nothing to read, and a device
    // may never end.
    if (!writeEnd.valid() && (count <= 0 || isDevice(pipe))) std::this_thread::sleep_for(waitTime);
  }
}

void nimbatrayAppDelegate::dispatch(std::span<const char> buffer, ShownNotices& shown, NoticeCalls& calls) {
  const std::string_view text = textIn(buffer);
  const NotificationAction action = notificationActionFor(text, shown);
  switch (action) {
    case NotificationAction::NotificationOn:
    case NotificationAction::NotificationOff:
    case NotificationAction::NoticeEnumerateOn:
    case NotificationAction::NoticeEnumerateOff:
      return request(action, calls);
    case NotificationAction::UnknownCommand:
      return systemLog(LogPriority::Error, "unknown command " + std::string(text));
    case NotificationAction::CollectData:
      return TvlGetCollectData(CollectMessage(buffer));
    case NotificationAction::None:
      return;
  }
}

void nimbatrayAppDelegate::runNoticeCall(NotificationAction call) {
  switch (call) {
    case NotificationAction::NotificationOn:
      return notificationOn();
    case NotificationAction::NotificationOff:
      return notificationOff();
    case NotificationAction::NoticeEnumerateOn:
      return noticeEnumerateOn();
    case NotificationAction::NoticeEnumerateOff:
      return noticeEnumerateOff();
    case NotificationAction::CollectData:
    case NotificationAction::UnknownCommand:
    case NotificationAction::None:
      return;
  }
}
