#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include <QWidget>

#include "platform/view.h"
#include "platform/window.h"
#include "tests/harness/desktop/event_loop.h"
#include "tests/platform/linux/windows/workspace_double.h"

// Windows on a display of the test's own, and a user's hands on them.
class WindowFixture : public testing::Test {
 protected:
  void SetUp() override { openedAddresses().clear(); }

  [[nodiscard]] static std::string display();
  [[nodiscard]] static QWidget& widgetOf(const platform::View& view);
  [[nodiscard]] static QWidget& widgetOf(const platform::Window& window);

  // Returns once the window has its frame and the keyboard.
  [[nodiscard]] static bool show(platform::Window& window);
  // Clicks at a place of the widget in points, counted from its upper left; its middle, if none is given.
  static void click(const QWidget& widget, QPoint place);
  static void click(const QWidget& widget) { click(widget, widget.rect().center()); }
  static void point(const QWidget& widget, QPoint place);
  static void press(const std::string& key);
  // Holds Return down on the widget for three repetitions, two of which the toolkit takes for new presses, as
  // it does when the program was busy; and presses it once more afterwards.
  static void holdReturnAndPressItAgain(QWidget& widget);
  // Returns when the program has dealt with what the hands have done so far.
  [[nodiscard]] static bool settle(platform::Window& window);

  // The colour on the display at a place of the widget.
  [[nodiscard]] static QColor colorAt(const QWidget& widget, QPoint place);
  // A picture of the display in the folder that TOVALIN_PICTURES names, if it does.
  static void savePicture(const std::string& name);
};
