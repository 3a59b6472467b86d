#include "companions/notification/shown_notice.h"

#include <chrono>
#include <utility>

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QUrl>
#include <QVariantMap>

namespace companions {
namespace {

constexpr const char* service = "org.freedesktop.Notifications";
constexpr const char* path = "/org/freedesktop/Notifications";
constexpr const char* interface = "org.freedesktop.Notifications";

constexpr const char* acceptAction = "accept";
constexpr const char* declineAction = "decline";
constexpr const char* desktopEntry = "com.kesmoor.tovalintrayagent";
constexpr const char* icon = "/Contents/Resources/TovalinTray.app/Contents/Resources/icon.png";

constexpr std::chrono::seconds closeWait{1};

QDBusMessage call(const char* method) {
  return QDBusMessage::createMethodCall(service, path, interface, method);
}

int milliseconds(std::chrono::milliseconds time) {
  return static_cast<int>(time.count());
}

QDBusMessage notifyCall(const Notice& notice, bool markup) {
  const QString iconAddress =
      QUrl::fromLocalFile(QString::fromStdString(notice.bundlePath) + icon).toString(QUrl::FullyEncoded);
  const QStringList actions = {acceptAction, QString::fromStdString(notice.actionLabel), declineAction,
                               QString::fromStdString(notice.closeLabel)};
  QDBusMessage message = call("Notify");
  message.setArguments({"Tovalin", 0U, iconAddress, QString::fromStdString(notice.title),
                        QString::fromStdString(bodyText(notice, markup)), actions,
                        QVariantMap{{"desktop-entry", desktopEntry}}, milliseconds(notice.timeout)});
  return message;
}

}  // namespace

ShownNotice::ShownNotice(const Notice& notice, std::function<void(End)> ended)
    : notice_(notice), ended_(std::move(ended)) {
  timeout_.setSingleShot(true);
  timeout_.setTimerType(Qt::PreciseTimer);
  // Some servers, such as GNOME's, ignore the timeout.
  connect(&timeout_, &QTimer::timeout, this, [this] { end(End::Declined); });
}

void ShownNotice::show() {
  if (!bus_.isConnected()) {
    // Posted, because the caller has not entered the event loop yet.
    QTimer::singleShot(0, this, [this] { fail(bus_.lastError().message()); });
    return;
  }
  connectSignals();
  auto* capabilities = new QDBusPendingCallWatcher(bus_.asyncCall(call("GetCapabilities")), this);
  connect(capabilities, &QDBusPendingCallWatcher::finished, this, [this, capabilities] {
    capabilities->deleteLater();
    const QDBusPendingReply<QStringList> reply = *capabilities;
    if (reply.isError()) return fail(reply.error().message());
    notify(reply.value().contains("body-markup"));
  });
}

void ShownNotice::connectSignals() {
  const auto connectSignal = [this](const char* name, const char* slot) {
    bus_.connect(service, path, interface, name, this, slot);
  };
  connectSignal("ActionInvoked", SLOT(ActionInvoked(uint, QString)));
  connectSignal("ActivationToken", SLOT(ActivationToken(uint, QString)));
  connectSignal("NotificationClosed", SLOT(NotificationClosed(uint, uint)));
}

void ShownNotice::notify(bool markup) {
  asked_ = true;
  // Avoids QDBusPendingCallWatcher, which may report the reply after signals that the server has sent later.
  bus_.callWithCallback(notifyCall(notice_, markup), this, SLOT(shown(uint)), SLOT(refused(QDBusError)));
}

void ShownNotice::refused(const QDBusError& error) {
  fail(error.message());
}

void ShownNotice::shown(uint id) {
  asked_ = false;
  id_ = id;
  if (cancelled_) return end(End::Declined);
  timeout_.start(notice_.timeout);
}

void ShownNotice::ActionInvoked(uint id, const QString& action) {
  if (id != id_ || id == 0) return;
  end(action == acceptAction ? End::Accepted : End::Declined);
}

void ShownNotice::ActivationToken(uint id, const QString& token) {
  if (id == id_) activationToken_ = token;
}

void ShownNotice::NotificationClosed(uint id, uint) {
  if (id != id_ || id == 0) return;
  id_ = 0;
  end(End::Declined);
}

void ShownNotice::cancel() {
  if (!asked_) return end(End::Declined);
  cancelled_ = true;
  timeout_.start(closeWait);
}

// Waits for the reply, so that the program does not end before its last message is sent.
void ShownNotice::close() {
  if (id_ == 0) return;
  QDBusMessage message = call("CloseNotification");
  message.setArguments({std::exchange(id_, 0)});
  bus_.call(message, QDBus::Block, milliseconds(closeWait));
}

void ShownNotice::fail(const QString& error) {
  error_ = error;
  end(End::Failed);
}

void ShownNotice::end(End end) {
  timeout_.stop();
  close();
  if (const auto ended = std::exchange(ended_, nullptr)) ended(end);
}

}  // namespace companions
