#pragma once

#import <Cocoa/Cocoa.h>

#include <memory>
#include <vector>

namespace platform {

class Window;

// Stack of the active AppKit modal runs, each nested in the previous one. Main thread only.
class ModalStack {
 public:
  // Runs a modal loop until this level is stopped. Keeps `window` alive meanwhile.
  void run(std::shared_ptr<Window> window);
  // Stops the innermost level that is still running. No-op if there is none.
  void stop();
  // Returns whether the top level has been stopped but `run` has not returned to its caller yet.
  [[nodiscard]] bool isUnwinding() const { return !levels_.empty() && levels_.back()->stopped; }
  // Returns whether `window` accepts input: no run is active, it is the innermost level's window, or that
  // window is not visible.
  [[nodiscard]] bool admits(NSWindow* window) const;

 private:
  struct Level {
    std::shared_ptr<Window> window;
    bool stopped = false;
  };
  [[nodiscard]] Level* innermost() const;

  std::vector<Level*> levels_;  // each is a local variable of `run`
};

}  // namespace platform
