#pragma once

#import <Cocoa/Cocoa.h>

#include <functional>
#include <memory>
#include <vector>

#include "platform/macos/foundation/action.h"
#include "platform/macos/foundation/retained.h"
#include "platform/view.h"
#include "platform/window.h"

namespace platform {

struct Window::Impl {
  Impl(Rect contentRect, WindowStyle ofStyle);
  ~Impl();

  // Whether the user may close the window now: its style has the control, and no sheet hangs on it.
  [[nodiscard]] bool mayBeClosed() const;
  // Tells the will-close handler once, takes the sheets away and lets the window show no more.
  void willBeClosed();
  // Gives up what keeps the window while it shows, once control is back in the run loop.
  void releaseOnceIdle();
  // Keeps an alert and the action of one of its buttons until dropForSheet, or until the window is closed.
  void keepForSheet(NSAlert* alert, TovalinAction* action);
  void dropForSheet(NSAlert* alert);

  WindowStyle style;
  Retained<NSWindow*> window;
  Retained<NSObject*> delegate;  // a window does not keep its delegate
  std::unique_ptr<View> content;
  std::shared_ptr<Window> onScreen;  // itself, while it shows or is hidden by inactivity
  std::function<void()> willClose;
  bool closed = false;

  struct SheetPart {
    Retained<NSAlert*> alert;
    Retained<TovalinAction*> action;  // a button does not keep its target
  };
  std::vector<SheetPart> keptForSheets;
};

}  // namespace platform
