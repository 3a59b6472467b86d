#include "platform/linux/tray/hidden_icon_notice.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QGuiApplication>
#include <QUrl>

#include "platform/bundle.h"
#include "platform/file_descriptor.h"
#include "platform/linux/processes/private_folder.h"

namespace platform {
namespace {

constexpr int serversOwnTimeout = -1;

std::string markPath() {
  const auto folder = privateFolder();
  return folder ? *folder + "/told-hidden" : std::string();
}

// Returns false if the file exists already. The sticky bit exempts it from the periodic cleanup of runtime
// directories.
bool makeMark(const std::string& path) {
  const FileDescriptor mark(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW,
                                   S_ISVTX | S_IRUSR | S_IWUSR));
  return mark.valid() || errno != EEXIST;
}

QString iconAddress() {
  const auto bundle = Bundle::mainBundle();
  if (!bundle) return {};
  return QUrl::fromLocalFile(QString::fromStdString(bundle->pathForResource("icon.png")))
      .toString(QUrl::FullyEncoded);
}

QDBusMessage notification(const std::string& title, const std::string& text) {
  QDBusMessage call = QDBusMessage::createMethodCall(
      QStringLiteral("org.freedesktop.Notifications"), QStringLiteral("/org/freedesktop/Notifications"),
      QStringLiteral("org.freedesktop.Notifications"), QStringLiteral("Notify"));
  const uint replacesNone = 0;
  call << QCoreApplication::applicationName() << replacesNone << iconAddress()
       << QString::fromStdString(title) << QString::fromStdString(text) << QStringList()
       << QVariantMap{{QStringLiteral("desktop-entry"), QGuiApplication::desktopFileName()}}
       << serversOwnTimeout;
  return call;
}

}  // namespace

HiddenIconNotice::HiddenIconNotice(std::chrono::milliseconds patience, std::string title, std::string text)
    : title_(std::move(title)), text_(std::move(text)) {
  patience_.setSingleShot(true);
  patience_.setInterval(patience);
  connect(&patience_, &QTimer::timeout, this, &HiddenIconNotice::show);
}

void HiddenIconNotice::setHidden(bool hidden) {
  if (!hidden) return patience_.stop();
  if (!patience_.isActive()) patience_.start();
}

void HiddenIconNotice::show() {
  mark_ = markPath();
  if (!mark_.empty() && !makeMark(mark_)) return;
  answer_ = std::make_unique<QDBusPendingCallWatcher>(
      QDBusConnection::sessionBus().asyncCall(notification(title_, text_)));
  connect(answer_.get(), &QDBusPendingCallWatcher::finished, this, &HiddenIconNotice::takeAnswer);
}

// If no notification server is running, removes the mark so that the next start tries again.
void HiddenIconNotice::takeAnswer() {
  if (answer_->isError() && !mark_.empty()) ::unlink(mark_.c_str());
}

}  // namespace platform
