#include "platform/linux/tray/exported_menu.h"

#include <utility>

#include <QAction>
#include <QBuffer>
#include <QDBusArgument>
#include <QEvent>
#include <QPixmap>

namespace platform {
namespace {

constexpr QLatin1StringView interfaceName("com.canonical.dbusmenu");
constexpr uint protocolVersion = 3;

constexpr const char* description = R"xml(
<property name="Version" type="u" access="read"/>
<property name="TextDirection" type="s" access="read"/>
<property name="Status" type="s" access="read"/>
<property name="IconThemePath" type="as" access="read"/>
<method name="GetLayout"><arg type="i" name="parentId" direction="in"/><arg type="i" name="recursionDepth" direction="in"/><arg type="as" name="propertyNames" direction="in"/><arg type="u" name="revision" direction="out"/><arg type="(ia{sv}av)" name="layout" direction="out"/></method>
<method name="GetGroupProperties"><arg type="ai" name="ids" direction="in"/><arg type="as" name="propertyNames" direction="in"/><arg type="a(ia{sv})" name="properties" direction="out"/></method>
<method name="GetProperty"><arg type="i" name="id" direction="in"/><arg type="s" name="name" direction="in"/><arg type="v" name="value" direction="out"/></method>
<method name="Event"><arg type="i" name="id" direction="in"/><arg type="s" name="eventId" direction="in"/><arg type="v" name="data" direction="in"/><arg type="u" name="timestamp" direction="in"/></method>
<method name="EventGroup"><arg type="a(isvu)" name="events" direction="in"/><arg type="ai" name="idErrors" direction="out"/></method>
<method name="AboutToShow"><arg type="i" name="id" direction="in"/><arg type="b" name="needUpdate" direction="out"/></method>
<method name="AboutToShowGroup"><arg type="ai" name="ids" direction="in"/><arg type="ai" name="updatesNeeded" direction="out"/><arg type="ai" name="idErrors" direction="out"/></method>
<signal name="ItemsPropertiesUpdated"><arg type="a(ia{sv})" name="updatedProps"/><arg type="a(ias)" name="removedProps"/></signal>
<signal name="LayoutUpdated"><arg type="u" name="revision"/><arg type="i" name="parent"/></signal>
)xml";

QVariantMap menuProperties() {
  return {{QStringLiteral("Version"), protocolVersion},
          {QStringLiteral("TextDirection"), QStringLiteral("ltr")},
          {QStringLiteral("Status"), QStringLiteral("normal")},
          {QStringLiteral("IconThemePath"), QStringList()}};
}

QByteArray pngOf(const QAction& action) {
  // Icons of menu items return their pixmap at its own size, whatever size is requested.
  const QPixmap picture = action.icon().pixmap(QSize(1, 1));
  if (picture.isNull()) return {};
  QByteArray png;
  QBuffer buffer(&png);
  buffer.open(QIODevice::WriteOnly);
  picture.save(&buffer, "PNG");
  return png;
}

MenuLine lineOf(const QAction& action) {
  // In Qt's texts an ampersand marks the access key, and two are a literal ampersand.
  return {.title = action.text().replace(QLatin1String("&&"), QLatin1String("&")),
          .separator = action.isSeparator(),
          .enabled = action.isEnabled(),
          .visible = action.isVisible(),
          .picture = pngOf(action)};
}

QDBusMessage unknownItem(const QDBusMessage& call, int id) {
  return invalidArguments(call, QStringLiteral("There is no item %1 in this menu").arg(id));
}

template <typename Value>
Value argumentOf(const QDBusMessage& call, int index) {
  return qdbus_cast<Value>(call.arguments()[index]);
}

}  // namespace

ExportedMenu::ExportedMenu(const QString& path, std::function<void()> called)
    : called_(std::move(called)), object_(path, interface()) {}

BusInterface ExportedMenu::interface() {
  const auto answering = [this](auto member) {
    return [this, member](const QDBusMessage& call) {
      called_();
      return (this->*member)(call);
    };
  };
  return {
      interfaceName,
      QString::fromLatin1(description),
      menuProperties,
      {
          {QLatin1StringView("GetLayout"), QLatin1StringView("iias"), answering(&ExportedMenu::getLayout)},
          {QLatin1StringView("GetGroupProperties"), QLatin1StringView("aias"),
           answering(&ExportedMenu::getGroupProperties)},
          {QLatin1StringView("GetProperty"), QLatin1StringView("is"), answering(&ExportedMenu::getProperty)},
          {QLatin1StringView("Event"), QLatin1StringView("isvu"), answering(&ExportedMenu::takeEvent)},
          {QLatin1StringView("EventGroup"), QLatin1StringView("a(isvu)"),
           answering(&ExportedMenu::takeEvents)},
          {QLatin1StringView("AboutToShow"), QLatin1StringView("i"), answering(&ExportedMenu::aboutToShow)},
          {QLatin1StringView("AboutToShowGroup"), QLatin1StringView("ai"),
           answering(&ExportedMenu::aboutToShowGroup)},
      }};
}

void ExportedMenu::show(QMenu* menu) {
  if (menu == menu_) return;
  if (menu_ != nullptr) menu_->removeEventFilter(this);
  menu_ = menu;
  if (menu_ != nullptr) menu_->installEventFilter(this);
  refresh();
}

bool ExportedMenu::eventFilter(QObject* watched, QEvent* event) {
  const QEvent::Type type = event->type();
  if (watched == menu_ &&
      (type == QEvent::ActionAdded || type == QEvent::ActionChanged || type == QEvent::ActionRemoved))
    refresh();
  return false;
}

void ExportedMenu::refresh() {
  QList<MenuLine> lines;
  if (menu_ != nullptr) {
    for (const QAction* action : menu_->actions()) lines.append(lineOf(*action));
  }
  const MenuChanges changes = changesBetween(std::exchange(lines_, lines), lines);
  if (changes.layout) {
    object_.emitSignal(QStringLiteral("LayoutUpdated"), {++revision_, menuRootId});
  } else if (!changes.updated.isEmpty() || !changes.removed.isEmpty()) {
    object_.emitSignal(QStringLiteral("ItemsPropertiesUpdated"),
                       {QVariant::fromValue(changes.updated), QVariant::fromValue(changes.removed)});
  }
}

QDBusMessage ExportedMenu::getLayout(const QDBusMessage& call) const {
  const int id = argumentOf<int>(call, 0);
  if (!hasItem(lines_, id)) return unknownItem(call, id);
  const MenuLayout layout = layoutOf(lines_, id, argumentOf<int>(call, 1), argumentOf<QStringList>(call, 2));
  return call.createReply({revision_, QVariant::fromValue(layout)});
}

QDBusMessage ExportedMenu::getGroupProperties(const QDBusMessage& call) const {
  const auto group =
      groupProperties(lines_, argumentOf<QList<int>>(call, 0), argumentOf<QStringList>(call, 1));
  return call.createReply(QVariant::fromValue(group));
}

QDBusMessage ExportedMenu::getProperty(const QDBusMessage& call) const {
  const int id = argumentOf<int>(call, 0);
  if (!hasItem(lines_, id)) return unknownItem(call, id);
  const auto name = argumentOf<QString>(call, 1);
  const QVariantMap properties = itemProperties(lines_, id, {name});
  if (properties.isEmpty())
    return invalidArguments(call, QStringLiteral("Item %1 has no property %2").arg(id).arg(name));
  return call.createReply(QVariant::fromValue(QDBusVariant(properties.first())));
}

QDBusMessage ExportedMenu::takeEvent(const QDBusMessage& call) {
  const int id = argumentOf<int>(call, 0);
  if (!hasItem(lines_, id)) return unknownItem(call, id);
  serve(id, argumentOf<QString>(call, 1));
  return call.createReply();
}

QDBusMessage ExportedMenu::takeEvents(const QDBusMessage& call) {
  const auto events = argumentOf<QList<MenuEvent>>(call, 0);
  QList<int> unknown;
  for (const MenuEvent& event : events) {
    if (hasItem(lines_, event.id)) {
      serve(event.id, event.name);
    } else {
      unknown.append(event.id);
    }
  }
  if (!events.isEmpty() && unknown.size() == events.size()) return unknownItem(call, unknown.constFirst());
  return call.createReply(QVariant::fromValue(unknown));
}

// The exported menu is always current, so no update is needed.
QDBusMessage ExportedMenu::aboutToShow(const QDBusMessage& call) const {
  const int id = argumentOf<int>(call, 0);
  return hasItem(lines_, id) ? call.createReply(false) : unknownItem(call, id);
}

QDBusMessage ExportedMenu::aboutToShowGroup(const QDBusMessage& call) const {
  QList<int> unknown;
  for (const int id : argumentOf<QList<int>>(call, 0)) {
    if (!hasItem(lines_, id)) unknown.append(id);
  }
  return call.createReply({QVariant::fromValue(QList<int>()), QVariant::fromValue(unknown)});
}

// Hosts also send "opened", "closed" and "hovered", which require no action.
void ExportedMenu::serve(int id, const QString& event) {
  if (event == QLatin1String("clicked") && canBeChosen(lines_, id)) menu_->actions()[id - 1]->trigger();
}

}  // namespace platform
