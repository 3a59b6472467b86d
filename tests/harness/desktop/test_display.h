#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/harness/desktop/x_connection.h"
#include "tests/harness/processes/child_process.h"

namespace test_support {

// A part of the display that programs take for a screen of its own, in pixels from the upper left.
struct Monitor {
  int width = 0;
  int height = 0;
  int x = 0;
  int y = 0;
};

struct DisplayOptions {
  int width = 1280;
  int height = 800;
  std::vector<Monitor> monitors = {};     // empty: one that covers the display
  std::optional<int> dpi = std::nullopt;  // 96 otherwise
  bool windowManager = true;
};

// A virtual X display of the test's own, with a window manager on it, both gone with this object. Programs
// reach it through DISPLAY=name().
//
// The server process is kept for the next display of the same kind: an X server resets itself when its last
// client leaves, which is much cheaper than a new one.
class TestDisplay {
 public:
  TestDisplay() = default;
  TestDisplay(const TestDisplay&) = delete;
  TestDisplay& operator=(const TestDisplay&) = delete;
  ~TestDisplay();

  // Ends what was started before. Returns when programs can open windows; false when the server or the window
  // manager did not come up.
  [[nodiscard]] bool start(const DisplayOptions& options = {});

  [[nodiscard]] const std::string& name() const { return name_; }  // ":N"
  [[nodiscard]] ChildProcess& server() { return server_; }
  [[nodiscard]] ChildProcess& windowManager() { return windowManager_; }

  // The loss of the display: its programs find their connection broken.
  void stop();

  // The whole display as a picture, its format taken from the path's ending.
  [[nodiscard]] bool screenshot(const std::string& path) const;

 private:
  [[nodiscard]] bool startServer(const DisplayOptions& options);
  [[nodiscard]] bool divide(const std::vector<Monitor>& monitors) const;
  [[nodiscard]] bool startWindowManager();

  std::string name_;
  std::vector<std::string> command_;
  ChildProcess server_;
  std::unique_ptr<XConnection>
      client_;  // the one that keeps the server from resetting while programs come and go
  ChildProcess windowManager_;
};

}  // namespace test_support
