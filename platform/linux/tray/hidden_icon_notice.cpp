#include "platform/linux/tray/hidden_icon_notice.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingReply>
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
  connect(&patience_, &QTimer::timeout, this, &HiddenIconNotice::askAboutLock);
}

void HiddenIconNotice::setHidden(bool hidden) {
  if (hidden) {
    if (!patience_.isActive() && lock_ == nullptr) patience_.start();
    return;
  }
  patience_.stop();
  lock_.reset();
}

// GNOME disables its extensions, and with them the panel for icons, while the session is locked.
void HiddenIconNotice::askAboutLock() {
  QDBusMessage call = QDBusMessage::createMethodCall(
      QStringLiteral("org.gnome.ScreenSaver"), QStringLiteral("/org/gnome/ScreenSaver"),
      QStringLiteral("org.gnome.ScreenSaver"), QStringLiteral("GetActive"));
  call.setAutoStartService(false);
  lock_ = std::make_unique<QDBusPendingCallWatcher>(QDBusConnection::sessionBus().asyncCall(call));
  connect(lock_.get(), &QDBusPendingCallWatcher::finished, this, &HiddenIconNotice::takeLock,
          Qt::QueuedConnection);
}

// Other desktops do not answer.
void HiddenIconNotice::takeLock() {
  if (lock_ == nullptr || !lock_->isFinished()) return;
  const QDBusPendingReply<bool> locked = *lock_;
  lock_.reset();
  if (locked.isValid() && locked.value()) return patience_.start();
  show();
}

void HiddenIconNotice::show() {
  mark_ = markPath();
  if (!mark_.empty() && !makeMark(mark_)) return;
  answer_ = std::make_unique<QDBusPendingCallWatcher>(
      QDBusConnection::sessionBus().asyncCall(notification(title_, text_)));
  connect(answer_.get(), &QDBusPendingCallWatcher::finished, this, &HiddenIconNotice::takeAnswer);
}

// If no notification server is running, removes the mark so that the next attempt can succeed.
void HiddenIconNotice::takeAnswer() {
  if (answer_->isError() && !mark_.empty()) ::unlink(mark_.c_str());
}

}  // namespace platform
