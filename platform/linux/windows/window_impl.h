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

  // Whether this toolkit window is the window itself.
  [[nodiscard]] bool owns(const QWidget& window) const { return &window == &widget; }
  // Visible, and neither made an icon nor on another desktop; from the moment on at which it was ordered
  // there.
  [[nodiscard]] bool isOnScreen() const;
  void setAboveOthers(bool above);
  // Tells the will-close handler, and lets the window show no more.
  void willBeClosed();
  // Gives up what keeps the window while it shows, once control is back in the run loop.
  void releaseOnceIdle();
  // Hides the window, or shows it again without asking for the keyboard.
  void followActivity(bool active);
  // Back from where the program's inactivity has hidden it, and to the front if it is visible.
  void comeForward();
  // Back from the icon that its user has made of it, below the window that keeps it from taking input.
  void comeBack();
  // Has the display show the widget's picture where nothing else is painted, until the toolkit has painted
  // it.
  void keepPictureUntilPainted();
  // Has the toolkit show the widget, with its picture in it until it is painted and no controls but its own.
  void appear(void (QWidget::*show)());
  // Repeats the window manager's hints, over those that the toolkit has written.
  void tellItsControls();

  WindowStyle style;
  std::unique_ptr<View> content;
  QWidget& widget;
  SheetQueue sheets;
  std::shared_ptr<Window> onScreen;  // itself, while it shows or is hidden by inactivity
  std::function<void()> willClose;
  bool closed = false;
  bool hiddenByInactivity = false;
  bool isComing = false;  // ordered to the front, and not yet drawn
  FirstPicture firstPicture;
  std::unique_ptr<ActivityWatch> activity;
};

// Whether a toolkit window was made by Window, in contrast to menus and the panel's icon.
[[nodiscard]] bool isWindowOfProgram(const QWidget& window);

// Whether a modal run keeps input from the widget's window.
[[nodiscard]] bool isBlocked(const QWidget& widget);

// Whether the widget, which stands in a Window and in no sheet, takes the user's input now: no sheet is up
// there, and no modal run keeps it. Events come by that anyway; assistive programs do not.
[[nodiscard]] bool takesInput(const QWidget& widget);

// Has each Window come forward.
void bringWindowsForward();

}  // namespace platform
