#pragma once

#include <functional>
#include <memory>

#include <QWidget>

#include "platform/linux/desktop/activity_watch.h"
#include "platform/linux/windows/first_picture.h"
#include "platform/linux/windows/sheet_queue.h"
#include "platform/view.h"
#include "platform/window.h"

namespace platform {

struct Window::Impl {
  Impl(Rect contentRect, WindowStyle ofStyle);

  // Returns whether `window` is this window's widget.
  [[nodiscard]] bool owns(const QWidget& window) const { return &window == &widget; }
  // Returns whether the window is visible, and neither minimised nor on another desktop. Also true between
  // the order to show it and its first painting.
  [[nodiscard]] bool isOnScreen() const;
  void setAboveOthers(bool above);
  // Closes the window permanently: dismisses its sheets and calls the will-close handler.
  void willBeClosed();
  // Drops the self-reference `onScreen` from the run loop.
  void releaseOnceIdle();
  // Hides the window, or shows it again without requesting the input focus.
  void followActivity(bool active);
  // Shows the window if inactivity has hidden it, and raises and activates it if it is visible.
  void raiseAndActivate();
  // Restores a minimised window, below the modal window that blocks its input, if any.
  void restore();
  // Sets the current image as the X window's background until Qt has painted the window.
  void showImageUntilPainted();
  // Shows a window that inactivity has hidden, at its former place.
  void reappear();
  // Calls `show` and sets the window's background image and its window-manager hints.
  void appear(void (QWidget::*show)());
  // Rewrites the window-manager hints after Qt has written its own.
  void updateMotifHints();

  WindowStyle style;
  std::unique_ptr<View> content;
  QWidget& widget;
  SheetQueue sheets;
  std::shared_ptr<Window> onScreen;  // self-reference while shown or hidden by inactivity
  std::function<void()> willClose;
  bool closed = false;
  bool hiddenByInactivity = false;
  bool awaitsFirstPaint = false;  // shown, not painted yet
  QRect placeBeforeHiding;        // of the content; valid while hiddenByInactivity
  FirstPicture firstPicture;
  std::unique_ptr<ActivityWatch> activity;
};

// Returns the implementation of the Window to which a top-level widget belongs, or nullptr.
[[nodiscard]] Window::Impl* implOf(const QWidget& window);

// Returns whether a top-level widget belongs to a Window, in contrast to menus and the tray icon.
[[nodiscard]] bool isWindowOfProgram(const QWidget& window);

// Returns whether a modal run keeps input from the widget's window.
[[nodiscard]] bool isBlocked(const QWidget& widget);

// Returns whether a widget in a Window, outside sheets, accepts input now: neither a sheet nor a modal run
// blocks it. Needed for accessibility actions, which bypass the event filters.
[[nodiscard]] bool acceptsInput(const QWidget& widget);

// Calls raiseAndActivate on every Window.
void bringWindowsForward();

}  // namespace platform
