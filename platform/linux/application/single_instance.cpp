#include "platform/linux/application/single_instance.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <fstream>
#include <string>
#include <thread>

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusVirtualObject>

#include "platform/linux/processes/private_folder.h"
#include "platform/log.h"

namespace platform {
namespace {

using namespace std::chrono_literals;

// Bus name, object path and interface as freedesktop.org's D-Bus activation of desktop entries defines them.
// Frozen: doc/compatibility.md.
constexpr QLatin1StringView busName("com.kesmoor.tovalintrayagent");
constexpr QLatin1StringView objectPath("/com/kesmoor/tovalintrayagent");
constexpr QLatin1StringView applicationInterface("org.freedesktop.Application");
constexpr QLatin1StringView activate("Activate");
constexpr int activationTimeoutMs = 5000;

bool activateNameOwner(const QDBusConnection& bus) {
  QDBusMessage call = QDBusMessage::createMethodCall(busName, objectPath, applicationInterface, activate);
  call << QVariantMap();
  call.setAutoStartService(false);
  return bus.call(call, QDBus::Block, activationTimeoutMs).type() == QDBusMessage::ReplyMessage;
}

// Returns "PID (NAME)", or less if the bus or /proc does not provide it.
std::string nameOwner(const QDBusConnection& bus) {
  const auto process = bus.interface()->servicePid(busName);
  if (!process.isValid()) return "with unknown id";
  const std::string id = std::to_string(process.value());
  std::ifstream file("/proc/" + id + "/comm");
  std::string name;
  std::getline(file, name);
  // The owner chooses its own process name. Replace control characters, which a terminal would interpret.
  std::ranges::replace_if(
      name, [](char c) { return c < ' ' || c > '~'; }, '?');
  return id + " (" + name + ")";
}

void report(const std::string& text) {
  systemLog(LogPriority::Error, text);
  consoleLog(text);
}

constexpr const char* noAgent = "that process cannot open the menu: it is not the tray agent";

void reportNameOwner(const QDBusConnection& bus) {
  const std::string name = busName.latin1();
  report("not started: process " + nameOwner(bus) + " owns the name " + name + " on the session bus");
}

class ActivateObject : public QDBusVirtualObject {
 public:
  explicit ActivateObject(std::function<void()> reopened) : reopened_(std::move(reopened)) {}

  QString introspect(const QString&) const override {
    return QStringLiteral(
        "<interface name=\"org.freedesktop.Application\">"
        "<method name=\"Activate\"><arg type=\"a{sv}\" name=\"platform_data\" direction=\"in\"/></method>"
        "</interface>");
  }

  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
    if (message.interface() != applicationInterface || message.member() != activate) return false;
    connection.send(message.createReply());
    reopened_();
    return true;
  }

 private:
  std::function<void()> reopened_;
};

}  // namespace

SingleInstance::SingleInstance() {
  const auto folder = privateFolder();
  if (!folder) return;
  // The sticky bit exempts the file from the periodic cleanup of runtime directories.
  lock_ = FileDescriptor(::open((*folder + "/lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW,
                                S_ISVTX | S_IRUSR | S_IWUSR));
  first_ = !lock_.valid() || takeLock();
}

SingleInstance::~SingleInstance() = default;

bool SingleInstance::takeLock() {
  return ::flock(lock_.get(), LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

bool SingleInstance::listen(std::function<void()> reopened) {
  auto bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return true;
  object_ = std::make_unique<ActivateObject>(std::move(reopened));
  bus.registerVirtualObject(objectPath, object_.get());
  const auto taken = bus.interface()->registerService(busName);
  return !taken.isValid() || taken.value() == QDBusConnectionInterface::ServiceRegistered;
}

void SingleInstance::deferToNameOwner() {
  const auto bus = QDBusConnection::sessionBus();
  reportNameOwner(bus);
  if (!activateNameOwner(bus)) report(noAgent);
}

bool SingleInstance::notifyFirst() {
  auto bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) {
    consoleLog("TovalinTray is already running; its menu cannot be opened without a session bus");
    return true;
  }
  const auto deadline = std::chrono::steady_clock::now() + 10s;
  do {
    if (activateNameOwner(bus)) return true;
    if (lock_.valid() && takeLock()) return false;
    std::this_thread::sleep_for(50ms);
  } while (std::chrono::steady_clock::now() < deadline);
  if (bus.interface()->isServiceRegistered(busName)) {
    reportNameOwner(bus);
    report(noAgent);
  } else {
    report("not started: another process holds the agent's lock and no process opens its menu");
  }
  return true;
}

}  // namespace platform
