#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/harness/desktop/display_state.h"
#include "tests/harness/desktop/x_connection.h"
#include "tests/harness/processes/child_process.h"

namespace test_support {

// An area of the display that programs see as a separate screen, in pixels from the upper left.
struct Monitor {
  int width = 0;
  int height = 0;
  int x = 0;
  int y = 0;

  bool operator==(const Monitor&) const = default;
};

struct DisplayOptions {
  int width = 1280;
  int height = 800;
  std::vector<Monitor> monitors = {};     // empty: one monitor for the whole display
  std::optional<int> dpi = std::nullopt;  // default: 96
  bool windowManager = true;

  bool operator==(const DisplayOptions&) const = default;
};

// A private virtual X display with a window manager. Programs connect to it through DISPLAY=name(). The
// destructor leaves both to the next display of the test program.
//
// The next display with the same options takes over the server and the window manager if the last one left
// the server as it had found it. Otherwise a server of the same size and resolution is reset, which is still
// faster than starting a new one.
class TestDisplay {
 public:
  TestDisplay() = default;
  TestDisplay(const TestDisplay&) = delete;
  TestDisplay& operator=(const TestDisplay&) = delete;
  ~TestDisplay();

  // Stops a display started before. Returns once programs can open windows; false if the server or the window
  // manager did not start.
  [[nodiscard]] bool start(const DisplayOptions& options = {});

  [[nodiscard]] const std::string& name() const { return name_; }  // ":N"
  [[nodiscard]] ChildProcess& server() { return server_; }
  [[nodiscard]] ChildProcess& windowManager() { return windowManager_; }

  // Kills the server: clients lose their connection.
  void stop();

  // Saves an image of the whole display in the format given by the path's suffix.
  [[nodiscard]] bool screenshot(const std::string& path) const;

 private:
  [[nodiscard]] bool takeOver(const DisplayOptions& options);
  [[nodiscard]] bool startServer();
  [[nodiscard]] bool divide(const std::vector<Monitor>& monitors) const;
  [[nodiscard]] bool startWindowManager();

  DisplayOptions options_;
  std::string name_;
  ChildProcess server_;
  std::unique_ptr<XConnection> client_;  // keeps the server from resetting when no program is connected
  ChildProcess windowManager_;
  DisplayState fresh_;  // before the first program starts; empty until then
};

}  // namespace test_support
