#include "platform/linux/tray/status_notifier_item.h"

#include <chrono>
#include <utility>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QDBusPendingReply>

#include "platform/linux/tray/icon_pixels.h"
#include "platform/log.h"

namespace platform {
namespace {

constexpr QLatin1StringView itemPath("/StatusNotifierItem");  // the path that watchers expect
constexpr QLatin1StringView menuPath("/MenuBar");
constexpr QLatin1StringView itemInterface("org.kde.StatusNotifierItem");

// Processes of other PID namespaces on the same bus may own the names with this process id.
constexpr int maxNameNumber = 16;
// The time in which panels follow a change of the desktop's appearance.
constexpr std::chrono::seconds repaintTime{1};
constexpr uint doNotQueue = 4;
constexpr uint primaryOwner = 1;

// Omits Activate and SecondaryActivate: hosts that ignore ItemIsMenu open the menu when the call fails with
// UnknownMethod. For hosts that do not open it, see HostMenuWait.
constexpr const char* description = R"xml(
<property name="Category" type="s" access="read"/>
<property name="Id" type="s" access="read"/>
<property name="Title" type="s" access="read"/>
<property name="Status" type="s" access="read"/>
<property name="WindowId" type="i" access="read"/>
<property name="IconThemePath" type="s" access="read"/>
<property name="IconName" type="s" access="read"/>
<property name="IconPixmap" type="a(iiay)" access="read"/>
<property name="OverlayIconName" type="s" access="read"/>
<property name="OverlayIconPixmap" type="a(iiay)" access="read"/>
<property name="AttentionIconName" type="s" access="read"/>
<property name="AttentionIconPixmap" type="a(iiay)" access="read"/>
<property name="AttentionMovieName" type="s" access="read"/>
<property name="ToolTip" type="(sa(iiay)ss)" access="read"/>
<property name="ItemIsMenu" type="b" access="read"/>
<property name="Menu" type="o" access="read"/>
<method name="ContextMenu"><arg type="i" name="x" direction="in"/><arg type="i" name="y" direction="in"/></method>
<method name="ProvideXdgActivationToken"><arg type="s" name="token" direction="in"/></method>
<signal name="NewTitle"/>
<signal name="NewIcon"/>
<signal name="NewToolTip"/>
<signal name="NewStatus"><arg type="s" name="status"/></signal>
)xml";

QString itemName(int number) {
  return QStringLiteral("org.kde.StatusNotifierItem-%1-%2")
      .arg(QCoreApplication::applicationPid())
      .arg(number);
}

QDBusMessage busCall(QLatin1StringView method) {
  return QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"),
                                        QStringLiteral("/org/freedesktop/DBus"),
                                        QStringLiteral("org.freedesktop.DBus"), method);
}

QDBusMessage registration(const QString& item) {
  QDBusMessage call = QDBusMessage::createMethodCall(
      QStringLiteral("org.kde.StatusNotifierWatcher"), QStringLiteral("/StatusNotifierWatcher"),
      QStringLiteral("org.kde.StatusNotifierWatcher"), QStringLiteral("RegisterStatusNotifierItem"));
  call.setAutoStartService(false);
  return call << item;
}

}  // namespace

StatusNotifierItem::StatusNotifierItem(std::function<void(std::optional<QPoint>)> openMenu)
    : openMenu_(std::move(openMenu)),
      hostMenuWait_([this] { openMenu_(std::nullopt); }),
      menu_(menuPath, [this] { hostMenuWait_.noteMenuCall(); }),
      object_(itemPath, interface()) {
  registerTrayTypes();
  iconReload_.setSingleShot(true);
  connect(&iconReload_, &QTimer::timeout, this, &StatusNotifierItem::reloadIcon);
}

StatusNotifierItem::~StatusNotifierItem() {
  withdraw();
}

BusInterface StatusNotifierItem::interface() {
  return {itemInterface,
          QString::fromLatin1(description),
          [this] { return properties(); },
          {{QLatin1StringView("Activate"), QLatin1StringView("ii"),
            [this](const QDBusMessage& call) { return activate(call); }},
           {QLatin1StringView("ContextMenu"), QLatin1StringView("ii"),
            [this](const QDBusMessage& call) { return contextMenu(call); }},
           // Ignored: only programs that open windows of their own on Wayland need the token.
           {QLatin1StringView("ProvideXdgActivationToken"), QLatin1StringView("s"),
            [](const QDBusMessage& call) { return call.createReply(); }}}};
}

QVariant StatusNotifierItem::pixels() {
  if (pixels_.isEmpty()) pixels_ = panelPixels(content_.image.get());
  return QVariant::fromValue(pixels_);
}

QVariantMap StatusNotifierItem::properties() {
  const QVariant noPixels = QVariant::fromValue(QList<IconPixels>());
  return {
      {QStringLiteral("Category"), QStringLiteral("ApplicationStatus")},
      {QStringLiteral("Id"), QCoreApplication::applicationName()},
      {QStringLiteral("Title"), content_.text},
      {QStringLiteral("Status"), QStringLiteral("Active")},
      {QStringLiteral("WindowId"), 0},
      {QStringLiteral("IconThemePath"), symbolFolder()},
      {QStringLiteral("IconName"), content_.symbol},
      {QStringLiteral("IconPixmap"), pixels()},
      {QStringLiteral("OverlayIconName"), QString()},
      {QStringLiteral("OverlayIconPixmap"), noPixels},
      {QStringLiteral("AttentionIconName"), QString()},
      {QStringLiteral("AttentionIconPixmap"), noPixels},
      {QStringLiteral("AttentionMovieName"), QString()},
      {QStringLiteral("ToolTip"), QVariant::fromValue(ItemToolTip{.title = content_.text})},
      {QStringLiteral("ItemIsMenu"), true},
      {QStringLiteral("Menu"), QVariant::fromValue(QDBusObjectPath(menuPath))},
  };
}

// Ignores the coordinates: some panels send those of their own window. The pointer is at the click.
QDBusMessage StatusNotifierItem::activate(const QDBusMessage& call) {
  return hostMenuWait_.activate(call.service()) ? call.createReply() : unknownMethod(call);
}

// Called by hosts that do not show menus themselves.
QDBusMessage StatusNotifierItem::contextMenu(const QDBusMessage& call) {
  const QPoint place(call.arguments()[0].toInt(), call.arguments()[1].toInt());
  QMetaObject::invokeMethod(
      this, [this, place] { openMenu_(place); }, Qt::QueuedConnection);
  return call.createReply();
}

void StatusNotifierItem::show(const StatusContent& content, int watcherNumber) {
  const StatusContent before = std::exchange(content_, content);
  if (before.image != content_.image) pixels_.clear();
  watcherNumber_ = watcherNumber;
  menu_.show(content_.menu);
  if (!content_.hasIcon()) return withdraw();
  if (!hasName_ && nameRequest_ == nullptr) return requestName();
  signalChange(signalsOfChange(before, content_));
  registerWithWatcher();
}

void StatusNotifierItem::signalChange(const QStringList& names) {
  for (const QString& name : names) object_.emitSignal(name);
  if (names.contains(QLatin1String("NewIcon")) && !symbolFolder().isEmpty()) iconReload_.start(repaintTime);
}

// xfce4-panel colours a symbolic icon when it loads it, possibly before its own colours have followed a
// change of the appearance. It loads the icon again only if a property differs.
void StatusNotifierItem::reloadIcon() {
  spelledOtherwise_ = !spelledOtherwise_;
  object_.emitSignal(QStringLiteral("NewIcon"));
}

QString StatusNotifierItem::symbolFolder() const {
  if (content_.symbol.isEmpty() || content_.symbolFolder.isEmpty()) return {};
  return spelledOtherwise_ ? content_.symbolFolder + QLatin1Char('/') : content_.symbolFolder;
}

// The item has a bus name of its own: when that is released, watchers drop the item, and the process keeps
// its connection.
void StatusNotifierItem::requestName() {
  ++nameNumber_;
  const QDBusMessage call = busCall(QLatin1StringView("RequestName")) << itemName(nameNumber_) << doNotQueue;
  nameRequest_ = std::make_unique<QDBusPendingCallWatcher>(QDBusConnection::sessionBus().asyncCall(call));
  connect(nameRequest_.get(), &QDBusPendingCallWatcher::finished, this, &StatusNotifierItem::takeNameAnswer,
          Qt::QueuedConnection);
}

void StatusNotifierItem::takeNameAnswer() {
  if (nameRequest_ == nullptr || !nameRequest_->isFinished()) return;
  const QDBusPendingReply<uint> answer = *nameRequest_;
  nameRequest_.reset();
  hasName_ = answer.isValid() && answer.value() == primaryOwner;
  if (hasName_) return registerWithWatcher();
  if (answer.isValid() && nameNumber_ < maxNameNumber) return requestName();
  systemLog(LogPriority::Error,
            "no icon in the panel: the session bus refuses the name " + itemName(nameNumber_).toStdString());
}

void StatusNotifierItem::registerWithWatcher() {
  if (!hasName_ || watcherNumber_ == registeredWith_) return;
  registeredWith_ = watcherNumber_;
  QDBusConnection::sessionBus().asyncCall(registration(itemName(nameNumber_)));
}

void StatusNotifierItem::withdraw() {
  if (hasName_ || nameRequest_ != nullptr)
    QDBusConnection::sessionBus().asyncCall(busCall(QLatin1StringView("ReleaseName"))
                                            << itemName(nameNumber_));
  nameRequest_.reset();
  hasName_ = false;
  nameNumber_ = 0;
  registeredWith_ = 0;
}

}  // namespace platform
