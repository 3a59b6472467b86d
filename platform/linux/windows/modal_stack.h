#pragma once

#include <memory>
#include <vector>

#include <QEventLoop>
#include <QObject>

class QWidget;

namespace platform {

class Window;

// The modal runs under way, each a run loop nested in the one before. The innermost level's window takes
// input; the other windows of the program don't, while it is on screen. Menus and the panel's icon always do.
// Main thread.
//
// The toolkit's own modality would end with the window's being hidden, and with it the run; here only `stop`
// ends one.
class ModalStack : public QObject {
 public:
  // The program's one stack. Never destroyed.
  static ModalStack& shared();

  // Serves events until this level is stopped.
  void run(std::shared_ptr<Window> window);
  // Stops the innermost level that still runs; nothing when there is none.
  void stop();
  // Has the innermost level's window come forward.
  void bringForward();
  // Whether this toolkit window of the program's takes no input now.
  [[nodiscard]] bool blocks(const QWidget& window) const;
  // Whether the level on top has been stopped and control is on its way back to who ran it.
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

  std::vector<Level*> levels_;  // each lives in its own `run`
};

}  // namespace platform
