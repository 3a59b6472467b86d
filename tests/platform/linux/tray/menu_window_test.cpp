#include "platform/linux/tray/menu_window.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QMenu>
#include <QWindow>

#include "tests/harness/desktop/event_loop.h"
#include "tests/harness/desktop/x_input.h"

namespace {

class MenuWindow : public testing::Test {
 protected:
  void SetUp() override {
    for (const char* title : {"First", "Second"})
      menu_.addAction(title, [this, title] { chosen_.append(title); });
    ASSERT_NO_FATAL_FAILURE(open());
  }
  void open() {
    window_.open({.text = "All is well", .menu = &menu_});
    ASSERT_TRUE(serveEventsUntil([this] { return menu_.isVisible() && window_.isActiveWindow(); }));
  }
  void press(const std::string& key) {
    ASSERT_TRUE(test_support::pressKey(qEnvironmentVariable("DISPLAY").toStdString(), key));
  }
  [[nodiscard]] bool isClosed() {
    return serveEventsUntil([this] { return !menu_.isVisible() && !window_.isVisible(); });
  }

  QMenu menu_;
  platform::MenuWindow window_;
  QStringList chosen_;
};

TEST_F(MenuWindow, OpensMenuAsItsPopupBelowItself) {
  EXPECT_EQ(menu_.windowHandle()->transientParent(), window_.windowHandle());
  EXPECT_EQ(menu_.pos(), window_.geometry().bottomLeft() + QPoint(0, 1));
  EXPECT_EQ(menu_.width(), window_.width());
}

TEST_F(MenuWindow, MenuFollowsWindowThatIsPlacedLate) {
  const QPoint before = menu_.pos();
  window_.move(window_.pos() + QPoint(50, 40));
  EXPECT_TRUE(serveEventsUntil([&] { return menu_.pos() == before + QPoint(50, 40); }));
}

TEST_F(MenuWindow, ClosesWithMenuOnEscape) {
  press("Escape");
  EXPECT_TRUE(isClosed());
  EXPECT_TRUE(chosen_.isEmpty());
}

TEST_F(MenuWindow, PassesKeysToMenu) {
  press("Down");
  press("Down");
  press("Return");
  EXPECT_TRUE(serveEventsUntil([this] { return chosen_ == QStringList("Second"); }));
  EXPECT_TRUE(isClosed());
}

TEST_F(MenuWindow, ClosesWithMenuWhenAnotherWindowGetsFocus) {
  QWidget other;
  other.show();
  other.activateWindow();
  EXPECT_TRUE(isClosed());
}

TEST_F(MenuWindow, ClosesMenuWhenClosed) {
  window_.close();
  EXPECT_TRUE(isClosed());
}

TEST_F(MenuWindow, OpensAgain) {
  press("Escape");
  ASSERT_TRUE(isClosed());
  open();
  press("Escape");
  EXPECT_TRUE(isClosed());
}

TEST_F(MenuWindow, OutlivesMenu) {
  auto* menu = new QMenu;
  menu->addAction("Only");
  press("Escape");
  ASSERT_TRUE(isClosed());
  window_.open({.text = "Gone", .menu = menu});
  ASSERT_TRUE(serveEventsUntil([menu] { return menu->isVisible(); }));
  delete menu;
  window_.open({.text = "None", .menu = nullptr});
  EXPECT_TRUE(serveEventsUntil([this] { return !window_.isVisible(); }));
}

}  // namespace
