#include "platform/macos/application/single_instance.h"

#import <Cocoa/Cocoa.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <system_error>
#include <utility>

#include "platform/distributed_notification_center.h"
#include "platform/macos/foundation/autorelease_pool.h"
#include "platform/macos/foundation/text_impl.h"
#include "platform/search_path.h"

namespace platform {
namespace {

constexpr const char* reopenNotification = "com.kesmoor.tovalintrayagent.reopen";

FileDescriptor openLockFile() {
  const auto support = applicationSupportDirectory();
  if (!support) return {};
  const std::string folder = *support + "/Tovalin";
  std::error_code error;
  std::filesystem::create_directories(*support, error);
  ::mkdir(folder.c_str(), S_IRWXU);
  return FileDescriptor(::open((folder + "/TovalinTray.lock").c_str(),
                               O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR));
}

}  // namespace

SingleInstance::SingleInstance() : lock_(openLockFile()) {
  first_ = !lock_.valid() || ::flock(lock_.get(), LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

void SingleInstance::listen(std::function<void()> reopened) {
  DistributedNotificationCenter::defaultCenter().addObserver(reopenNotification, std::move(reopened));
}

void SingleInstance::notifyFirst() {
  const AutoreleasePool pool;
  [[NSDistributedNotificationCenter defaultCenter] postNotificationName:textOf(reopenNotification)
                                                                 object:nil
                                                               userInfo:nil
                                                     deliverImmediately:YES];
}

}  // namespace platform
