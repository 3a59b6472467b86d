#include "tests/harness/bus_doubles/tray_host.h"

#include <algorithm>

#include <QDBusArgument>
#include <QDBusVariant>
#include <QImage>

#include "tests/harness/bus_doubles/command_lines.h"
#include "tests/harness/bus_doubles/icon_pixmap.h"

namespace {

struct LastWord {
  QString before = {};
  QString word = {};
};

LastWord splitLastWord(const QString& text) {
  const qsizetype space = text.lastIndexOf(' ');
  return {text.left(std::max<qsizetype>(space, 0)), text.mid(space + 1)};
}

QString propertyText(const QVariant& value) {
  if (value.canConvert<QDBusObjectPath>()) return value.value<QDBusObjectPath>().path();
  if (!value.canConvert<QDBusArgument>()) return value.toString();
  const auto argument = value.value<QDBusArgument>();
  if (argument.currentSignature() == "a(iiay)") {
    QStringList sizes;
    for (const QImage& image : imagesOf(value)) sizes.append(sizeText(image));
    return sizes.join(' ');
  }
  if (argument.currentSignature() != "(sa(iiay)ss)") return "<" + argument.currentSignature() + ">";
  QString icon;
  QString title;
  QString text;
  argument.beginStructure();
  argument >> icon;
  argument.beginArray();
  while (!argument.atEnd()) argument.asVariant();
  argument.endArray();
  argument >> title >> text;
  argument.endStructure();
  return text.isEmpty() ? title : title + "|" + text;
}

void answerSaved(const QImage& image, const QString& file) {
  say(image.save(file, "PNG") ? "ok " + sizeText(image) : "error can't write " + file);
}

}  // namespace

TrayHost::TrayHost(const QDBusConnection& bus) : bus_(bus), watcher_(bus) {
  const auto follow = [this] { followNewestItem(); };
  QObject::connect(&watcher_, &StatusNotifierWatcher::StatusNotifierItemRegistered, &watcher_, follow);
  QObject::connect(&watcher_, &StatusNotifierWatcher::StatusNotifierItemUnregistered, &watcher_, follow);
}

void TrayHost::followNewestItem() {
  item_ = nullptr;
  if (watcher_.items().isEmpty()) return;
  const ItemAddress& newest = watcher_.items().constLast();
  item_ = &seen_.try_emplace(newest.service + newest.path, bus_, newest).first->second;
}

void TrayHost::handle(const QString& line) {
  const auto [word, rest] = splitCommand(line);
  if (word == "items") return printItems();
  if (word == "host") {
    watcher_.setHostRegistered(rest == "on");
    return say("ok");
  }
  if (!item_) return say("error no item is registered");
  handleForItem(word, rest);
}

void TrayHost::handleForItem(const QString& word, const QString& rest) {
  if (word == "properties") return printProperties();
  if (word == "menu") return printMenu();
  if (word == "icons") return printIconSizes();
  if (word == "icon") return saveIcon(splitLastWord(rest).before, splitLastWord(rest).word);
  if (word == "menuicon") return saveMenuIcon(splitLastWord(rest).before, splitLastWord(rest).word);
  if (word == "click") return click(rest);
  if (word == "clickknown") return clickIn(item_->knownMenu(), rest);
  if (word == "activate") return callAt("Activate", rest);
  if (word == "contextmenu") return callAt("ContextMenu", rest);
  if (word == "secondary") return callAt("SecondaryActivate", rest);
  if (word == "abouttoshow") return showMenu();
  say("error unknown command " + word);
}

void TrayHost::printItems() {
  for (const ItemAddress& item : watcher_.items()) say("  " + item.service + " " + item.path);
  say("ok " + QString::number(watcher_.items().size()));
}

void TrayHost::printProperties() {
  item_->fetchProperties([](const QVariantMap& properties) {
    for (auto it = properties.begin(); it != properties.end(); ++it) {
      say("  " + it.key() + "=" + propertyText(it.value()));
    }
    say("ok");
  });
}

void TrayHost::printMenu() {
  item_->fetchMenu([](const QList<MenuItem>& items) {
    for (const MenuItem& item : items) say("  " + item.describe());
    say("ok " + QString::number(items.size()));
  });
}

void TrayHost::printIconSizes() {
  item_->fetchProperties(
      [](const QVariantMap& properties) { say("ok " + propertyText(properties.value("IconPixmap"))); });
}

void TrayHost::saveIcon(const QString& file, const QString& size) {
  item_->fetchProperties([=](const QVariantMap& properties) {
    for (const QImage& image : imagesOf(properties.value("IconPixmap"))) {
      if (sizeText(image) == size || QString::number(image.width()) == size) return answerSaved(image, file);
    }
    say("error no icon of size " + size + " among " + propertyText(properties.value("IconPixmap")));
  });
}

void TrayHost::saveMenuIcon(const QString& label, const QString& file) {
  item_->fetchMenu([=](const QList<MenuItem>& items) {
    const std::optional<MenuItem> item = itemLabelled(items, label);
    if (!item) return say("error no item " + label);
    if (item->iconData().isEmpty()) return say("error no icon at " + label);
    answerSaved(QImage::fromData(item->iconData()), file);
  });
}

// Desktops call AboutToShow before they draw the menu.
void TrayHost::showMenu() {
  item_->fetchMenu([this](const QList<MenuItem>&) {
    item_->callMenu("AboutToShow", {0}, "shown");
    say("ok");
  });
}

void TrayHost::click(const QString& label) {
  item_->fetchMenu([this, label](const QList<MenuItem>& items) { clickIn(items, label); });
}

void TrayHost::clickIn(const QList<MenuItem>& items, const QString& label) {
  const std::optional<MenuItem> item = itemLabelled(items, label);
  if (!item) return say("error no item " + label);
  if (!item->enabled() || !item->visible()) return say("error nobody could click " + label);
  const QVariant nothing = QVariant::fromValue(QDBusVariant(QString()));
  item_->callMenu("Event", {item->id, "clicked", nothing, 0U}, "clicked " + label);
  say("ok " + QString::number(item->id));
}

void TrayHost::callAt(const QString& method, const QString& place) {
  const Command numbers = splitCommand(place);
  item_->callItem(method, {numbers.word.toInt(), numbers.rest.toInt()}, "called " + method);
  say("ok");
}
