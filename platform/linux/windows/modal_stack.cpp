#include "platform/linux/windows/modal_stack.h"

#include <algorithm>

#include <QApplication>
#include <QEvent>
#include <QWidget>

#include "platform/linux/windows/window_impl.h"
#include "platform/window.h"

namespace platform {
namespace {

bool isInput(const QEvent& event) {
  switch (event.type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::Wheel:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::ShortcutOverride:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TabletPress:
    case QEvent::TabletMove:
    case QEvent::TabletRelease:
    case QEvent::NativeGesture:
    case QEvent::DragEnter:
    case QEvent::Drop:
    case QEvent::InputMethod:
    case QEvent::Enter:
    case QEvent::ContextMenu:
    case QEvent::Close:
      return true;
    default:
      return false;
  }
}

}  // namespace

ModalStack& ModalStack::shared() {
  static auto& stack = *new ModalStack;
  return stack;
}

void ModalStack::run(std::shared_ptr<Window> window) {
  Level level(std::move(window));
  level.window->impl().setAboveOthers(true);
  levels_.push_back(&level);
  qApp->installEventFilter(this);
  level.loop.exec();
  levels_.pop_back();
  level.window->impl().setAboveOthers(false);
}

ModalStack::Level* ModalStack::innermost() const {
  const auto running =
      std::find_if(levels_.rbegin(), levels_.rend(), [](const Level* level) { return !level->stopped; });
  return running == levels_.rend() ? nullptr : *running;
}

void ModalStack::stop() {
  Level* level = innermost();
  if (level == nullptr) return;
  level->stopped = true;
  level->loop.quit();
}

void ModalStack::raiseInnermost() {
  if (const Level* level = innermost()) level->window->impl().raiseAndActivate();
}

bool ModalStack::blocks(const QWidget& window) const {
  const Level* level = innermost();
  return level != nullptr && level->window->impl().isOnScreen() && isWindowOfProgram(window) &&
         !level->window->impl().owns(window);
}

bool ModalStack::isInnermost(const QWidget& window) const {
  const Level* level = innermost();
  return level != nullptr && level->window->impl().owns(window);
}

bool ModalStack::eventFilter(QObject* receiver, QEvent* event) {
  if (!isInput(*event) || !receiver->isWidgetType()) return false;
  if (!blocks(*static_cast<QWidget*>(receiver)->window())) return false;
  if (event->type() == QEvent::MouseButtonPress) innermost()->window->makeKeyAndOrderFront();
  event->ignore();
  return true;
}

}  // namespace platform
