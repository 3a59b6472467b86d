#pragma once

#import <Cocoa/Cocoa.h>

#include <memory>
#include <vector>

namespace platform {

class Window;

// The modal runs under way, each of them AppKit's, nested in the one before. Main thread.
class ModalStack {
 public:
  // Serves events until this level is stopped.
  void run(std::shared_ptr<Window> window);
  // Stops the innermost level that still runs; nothing when there is none.
  void stop();
  // Whether the level on top has been stopped and control is on its way back to who ran it.
  [[nodiscard]] bool isUnwinding() const { return !levels_.empty() && levels_.back()->stopped; }
  // Whether the window takes input: it is the innermost level's, or that level's is not on screen.
  [[nodiscard]] bool admits(NSWindow* window) const;

 private:
  struct Level {
    std::shared_ptr<Window> window;
    bool stopped = false;
  };
  [[nodiscard]] Level* innermost() const;

  std::vector<Level*> levels_;  // each lives in its own `run`
};

}  // namespace platform
