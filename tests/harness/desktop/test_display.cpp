#include "tests/harness/desktop/test_display.h"

#include <utility>

#include "tests/harness/desktop/window_manager.h"
#include "tests/harness/desktop/x_connection.h"
#include "tests/harness/processes/wait_until.h"

namespace test_support {
namespace {

std::vector<std::string> serverCommand(const DisplayOptions& options) {
  const std::string screen = std::to_string(options.width) + "x" + std::to_string(options.height) + "x24";
  std::vector<std::string> command{"Xvfb", "-displayfd", "1", "-nolisten", "tcp", "-screen", "0", screen};
  if (options.dpi) command.insert(command.end(), {"-dpi", std::to_string(*options.dpi)});
  return command;
}

// Desktops store the user's resolution in this property; toolkits prefer it to the server's own.
void setFontResolution(const std::string& name, int dpi) {
  const XConnection display(name);
  const std::string resource = "Xft.dpi:\t" + std::to_string(dpi) + "\n";
  xcb_change_property(display.get(), XCB_PROP_MODE_REPLACE, display.root(), XCB_ATOM_RESOURCE_MANAGER,
                      XCB_ATOM_STRING, 8, static_cast<std::uint32_t>(resource.size()), resource.c_str());
  display.synchronize();
}

std::string geometryText(const Monitor& monitor) {
  const auto length = [](int pixels) {
    const int millimetres = pixels * 254 / 960;
    return std::to_string(pixels) + "/" + std::to_string(millimetres);
  };
  return length(monitor.width) + "x" + length(monitor.height) + "+" + std::to_string(monitor.x) + "+" +
         std::to_string(monitor.y);
}

// A root window property that lasts until the server resets and that no program under test uses.
constexpr xcb_atom_t inUse = XCB_ATOM_CUT_BUFFER7;
constexpr const char* inUseName = "CUT_BUFFER7";
// Limits the wait for clients that a test left running; starting a new server is faster than a longer wait.
constexpr std::chrono::seconds resetLimit{2};
// Limits the wait for programs that end; a reset is faster than a longer wait.
constexpr std::chrono::milliseconds freshLimit{300};

// What the previous display left running.
struct IdleDisplay {
  DisplayOptions options;
  std::string name;
  ChildProcess server;
  std::unique_ptr<XConnection> client;
  ChildProcess windowManager;
  DisplayState fresh;
};
IdleDisplay& idleDisplay() {
  static IdleDisplay display;
  return display;
}

// Returns whether the previous display is as it was at its start, once its programs have ended.
bool isFresh(IdleDisplay& display) {
  if (display.options.windowManager && !display.windowManager.running()) return false;
  return waitUntil([&] { return stateOf(*display.client) == display.fresh; }, freshLimit);
}

// Returns the first client of the server's new generation, or nullptr if clients of the previous one remain.
// A resetting server refuses clients.
std::unique_ptr<XConnection> clientAfterReset(const std::string& display) {
  std::unique_ptr<XConnection> client;
  const auto isReset = [&] {
    client = nullptr;
    client = std::make_unique<XConnection>(display);
    return client->valid() && !client->numberProperty(client->root(), inUseName) && client->valid();
  };
  return waitUntil(isReset, resetLimit) ? std::move(client) : nullptr;
}

void markInUse(const XConnection& client) {
  const std::uint32_t value = 1;
  xcb_change_property(client.get(), XCB_PROP_MODE_REPLACE, client.root(), inUse, XCB_ATOM_CARDINAL, 32, 1,
                      &value);
  client.synchronize();
}

}  // namespace

TestDisplay::~TestDisplay() {
  if (!server_.running() || fresh_ == DisplayState()) return;
  idleDisplay() = {std::move(options_), std::move(name_),          std::move(server_),
                   std::move(client_),  std::move(windowManager_), std::move(fresh_)};
}

bool TestDisplay::takeOver(const DisplayOptions& options) {
  IdleDisplay& idle = idleDisplay();
  if (idle.options != options || !idle.server.running() || !isFresh(idle)) return false;
  name_ = std::move(idle.name);
  server_ = std::move(idle.server);
  client_ = std::move(idle.client);
  windowManager_ = std::move(idle.windowManager);
  fresh_ = std::move(idle.fresh);
  makeFresh(*client_);
  return true;
}

bool TestDisplay::startServer() {
  IdleDisplay idle = std::exchange(idleDisplay(), {});
  idle.windowManager = ChildProcess();
  idle.client = nullptr;
  const std::vector<std::string> command = serverCommand(options_);
  if (serverCommand(idle.options) == command && idle.server.running()) client_ = clientAfterReset(idle.name);
  if (client_) {
    server_ = std::move(idle.server);
    name_ = std::move(idle.name);
  } else {
    if (!server_.start(command, {.error = Redirection::null()})) return false;
    const std::optional<std::string> number = server_.readLine();
    if (!number || number->empty()) return false;
    name_ = ":" + *number;
    client_ = std::make_unique<XConnection>(name_);
  }
  markInUse(*client_);
  return client_->valid();
}

bool TestDisplay::start(const DisplayOptions& options) {
  stop();
  options_ = options;
  if (takeOver(options)) return true;
  if (!startServer()) return false;
  if (options.dpi) setFontResolution(name_, *options.dpi);
  if (!divide(options.monitors) || (options.windowManager && !startWindowManager())) return false;
  makeFresh(*client_);
  fresh_ = stateOf(*client_);
  return true;
}

bool TestDisplay::divide(const std::vector<Monitor>& monitors) const {
  // The first monitor takes the server's only output from the default monitor, which covers the whole
  // display.
  std::string output = "screen";
  for (const Monitor& monitor : monitors) {
    ChildProcess xrandr;
    const bool started =
        xrandr.start({"xrandr", "--display", name_, "--setmonitor", "at" + std::to_string(monitor.x),
                      geometryText(monitor), std::exchange(output, "none")});
    if (!started || xrandr.wait() != ExitStatus{.code = 0}) return false;
  }
  return true;
}

bool TestDisplay::startWindowManager() {
  const ChildOptions options{
      .environment = {{"DISPLAY", name_}}, .output = Redirection::null(), .error = Redirection::null()};
  return windowManager_.start({"openbox", "--sm-disable"}, options) && waitForWindowManager(name_);
}

void TestDisplay::stop() {
  client_ = nullptr;
  server_ = ChildProcess();
  windowManager_ = ChildProcess();
  fresh_ = {};
}

bool TestDisplay::screenshot(const std::string& path) const {
  ChildProcess picture;
  return picture.start({"import", "-display", name_, "-window", "root", path},
                       {.error = Redirection::null()}) &&
         picture.wait() == ExitStatus{.code = 0};
}

}  // namespace test_support
