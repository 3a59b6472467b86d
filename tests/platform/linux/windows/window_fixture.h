#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include <QWidget>

#include "platform/view.h"
#include "platform/window.h"
#include "tests/harness/desktop/event_loop.h"
#include "tests/platform/linux/windows/workspace_double.h"

// Shows windows on the display of the test and simulates a user's input. Main thread only.
class WindowFixture : public testing::Test {
 protected:
  void SetUp() override { openedAddresses().clear(); }

  [[nodiscard]] static std::string display();
  [[nodiscard]] static QWidget& widgetOf(const platform::View& view);
  [[nodiscard]] static QWidget& widgetOf(const platform::Window& window);

  // Orders the window to the front and waits for its frame and the input focus. Returns false after the
  // timeout.
  [[nodiscard]] static bool show(platform::Window& window);
  // Clicks at a position of the widget in points from its upper left corner; by default at its centre.
  static void click(const QWidget& widget, QPoint place);
  static void click(const QWidget& widget) { click(widget, widget.rect().center()); }
  static void point(const QWidget& widget, QPoint place);
  static void press(const std::string& key);
  // Sends a held Return key with three repetitions, two of which Qt reports as new presses, as it does for a
  // busy program; then presses Return once more.
  static void holdReturnAndPressItAgain(QWidget& widget);
  // Waits until the program has handled all input so far. Returns false after the timeout.
  [[nodiscard]] static bool settle(platform::Window& window);

  // Returns the colour on the display at a position of the widget.
  [[nodiscard]] static QColor colorAt(const QWidget& widget, QPoint place);
  // Saves a screenshot to the folder in TOVALIN_PICTURES, if it is set.
  static void savePicture(const std::string& name);
};
