#pragma once

#include <memory>
#include <vector>

#include <QEventLoop>
#include <QObject>

class QWidget;

namespace platform {

class Window;

// Stack of the active modal runs, each a run loop nested in the previous one. While the window of the
// innermost run is on screen, only it accepts input; menus and the tray icon always do. Main thread only.
//
// Not based on Qt's modality, which ends when the window is hidden: only `stop` ends a run.
class ModalStack : public QObject {
 public:
  // Returns the only instance, which is never destroyed.
  static ModalStack& shared();

  // Runs a nested event loop until this level is stopped. Keeps `window` alive meanwhile.
  void run(std::shared_ptr<Window> window);
  // Stops the innermost level that is still running. No-op if there is none.
  void stop();
  // Raises and activates the window of the innermost level.
  void raiseInnermost();
  // Returns whether a modal run keeps input from this top-level widget. Always false for menus and the tray
  // icon.
  [[nodiscard]] bool blocks(const QWidget& window) const;
  // Returns whether this top-level widget is the window of the innermost run.
  [[nodiscard]] bool isInnermost(const QWidget& window) const;
  // Returns whether the top level has been stopped but `run` has not returned to its caller yet.
  [[nodiscard]] bool isUnwinding() const { return !levels_.empty() && levels_.back()->stopped; }

  bool eventFilter(QObject* receiver, QEvent* event) override;

 private:
  struct Level {
    explicit Level(std::shared_ptr<Window> ofWindow) : window(std::move(ofWindow)) {}
    std::shared_ptr<Window> window;
    QEventLoop loop;
    bool stopped = false;
  };
  [[nodiscard]] Level* innermost() const;

  std::vector<Level*> levels_;  // each is a local variable of `run`
};

}  // namespace platform
