#include "platform/button.h"

#include <gtest/gtest.h>

#include <QProxyStyle>
#include <QStyleOption>

#include "platform/linux/windows/bezel_button.h"
#include "tests/platform/linux/windows/support_layout.h"
#include "tests/platform/linux/windows/window_fixture.h"

namespace {

using Titles = std::vector<std::string>;

class ButtonInWindow : public WindowFixture {
 protected:
  void SetUp() override { ASSERT_TRUE(show(*layout_.window)); }
  void TearDown() override { layout_.window->close(); }

  // Clicks the last button and waits for its action. Returns the actions so far.
  [[nodiscard]] Titles clicksInAll() {
    click(widgetOf(*layout_.log));
    EXPECT_TRUE(
        serveEventsUntil([&] { return !layout_.clicks.empty() && layout_.clicks.back() == "Log file"; }));
    return layout_.clicks;
  }

  SupportLayout layout_;
};

TEST_F(ButtonInWindow, ClickActsOnce) {
  click(widgetOf(*layout_.update));
  EXPECT_EQ(clicksInAll(), (Titles{"Update", "Log file"}));
}

TEST_F(ButtonInWindow, ClickActsWithinBezelOnly) {
  const QWidget& button = widgetOf(*layout_.update);
  for (const QPoint outside : {QPoint(60, 2), QPoint(60, 43), QPoint(2, 22), QPoint(118, 22)})
    click(button, outside);
  for (const QPoint inside : {QPoint(8, 9), QPoint(111, 36)}) click(button, inside);
  EXPECT_EQ(clicksInAll(), (Titles{"Update", "Update", "Log file"}));
}

TEST_F(ButtonInWindow, ActsOnlyWhileEnabled) {
  layout_.update->setEnabled(false);
  EXPECT_FALSE(layout_.update->isEnabled());
  click(widgetOf(*layout_.update));
  EXPECT_EQ(clicksInAll(), (Titles{"Log file"}));
  layout_.update->setEnabled(true);
  EXPECT_TRUE(layout_.update->isEnabled());
  click(widgetOf(*layout_.update));
  EXPECT_EQ(clicksInAll(), (Titles{"Log file", "Update", "Log file"}));
}

TEST_F(ButtonInWindow, FocusedButtonActsOnReturnAndSpace) {
  widgetOf(*layout_.faq).setFocus();
  press("Return");
  press("KP_Enter");
  press("space");
  EXPECT_EQ(clicksInAll(), (Titles{"FAQ", "FAQ", "FAQ", "Log file"}));
}

TEST_F(ButtonInWindow, AutoRepeatActsOnce) {
  holdReturnAndPressItAgain(widgetOf(*layout_.faq));
  EXPECT_EQ(clicksInAll(), (Titles{"FAQ", "FAQ", "Log file"}));
}

TEST_F(ButtonInWindow, RegainsFocusWhenEnabledAgain) {
  QWidget& button = widgetOf(*layout_.log);
  button.setFocus();
  layout_.log->setEnabled(false);
  EXPECT_FALSE(button.hasFocus());
  layout_.log->setEnabled(true);
  EXPECT_TRUE(button.hasFocus());
}

TEST_F(ButtonInWindow, DoesNotTakeMovedFocusWhenEnabledAgain) {
  widgetOf(*layout_.log).setFocus();
  layout_.log->setEnabled(false);
  widgetOf(*layout_.update).setFocus();
  layout_.log->setEnabled(true);
  EXPECT_TRUE(widgetOf(*layout_.update).hasFocus());
}

TEST_F(ButtonInWindow, WithoutFocusTakesNoneWhenEnabledAgain) {
  widgetOf(*layout_.faq).setFocus();
  layout_.log->setEnabled(false);
  layout_.log->setEnabled(true);
  EXPECT_TRUE(widgetOf(*layout_.faq).hasFocus());
}

TEST_F(ButtonInWindow, TabSkipsDisabledButton) {
  layout_.faq->setEnabled(false);
  widgetOf(*layout_.update).setFocus();
  press("Tab");
  EXPECT_TRUE(serveEventsUntil([&] { return widgetOf(*layout_.log).hasFocus(); }));
}

TEST_F(ButtonInWindow, IsPaintedReleasedDuringAction) {
  QWidget& button = widgetOf(*layout_.update);
  const QPoint besideTheTitle(20, 22);
  button.setFocus();
  point(button, besideTheTitle);
  ASSERT_TRUE(serveEventsUntil([&] { return button.underMouse(); }));
  ASSERT_TRUE(settle(*layout_.window));
  const QColor before = colorAt(button, besideTheTitle);
  QColor during;
  layout_.update->setAction([&] { during = colorAt(button, besideTheTitle); });
  click(button, besideTheTitle);
  ASSERT_TRUE(serveEventsUntil([&] { return during.isValid(); }));
  EXPECT_EQ(during, before);
}

TEST_F(ButtonInWindow, ActionMayReplaceItself) {
  layout_.update->setAction([this] {
    layout_.update->setAction([this] { layout_.clicks.emplace_back("second"); });
    layout_.clicks.emplace_back("first");
  });
  click(widgetOf(*layout_.update));
  click(widgetOf(*layout_.update));
  EXPECT_EQ(clicksInAll(), (Titles{"first", "second", "Log file"}));
}

TEST_F(ButtonInWindow, ActionMayCloseAndReleaseItsWindow) {
  auto own = std::make_unique<SupportLayout>();
  ASSERT_TRUE(show(*own->window));
  const std::weak_ptr<platform::Window> window = own->window;
  own->update->setAction([&] {
    const auto closing = window.lock();
    own.reset();
    closing->close();
  });
  click(widgetOf(*own->update));
  EXPECT_TRUE(serveEventsUntil([&] { return window.expired(); }));
}

TEST_F(ButtonInWindow, AmpersandInTitleIsShown) {
  layout_.update->setTitle("Q&A");
  EXPECT_EQ(widgetOf(*layout_.update).property("text").toString().toStdString(), "Q&&A");
}

TEST_F(ButtonInWindow, WithoutActionClickIsIgnored) {
  layout_.update->setAction(nullptr);
  click(widgetOf(*layout_.update));
  EXPECT_EQ(clicksInAll(), (Titles{"Log file"}));
}

// Records the cache key of the palette with which the style draws a button.
class BezelPictures : public QProxyStyle {
 public:
  qint64 identityFor(const QColor& colour) {
    platform::BezelButton button;
    button.setStyle(this);
    button.setPalette(QPalette(colour));
    button.grab();
    return identity_;
  }

  void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                   const QWidget* widget) const override {
    identity_ = option->palette.cacheKey();
    QProxyStyle::drawControl(element, option, painter, widget);
  }

 private:
  mutable qint64 identity_ = 0;
};

TEST(BezelPicture, IsReusedAfterButtonsOfAnotherColour) {
  BezelPictures pictures;
  const qint64 light = pictures.identityFor(Qt::white), dark = pictures.identityFor(Qt::black);
  EXPECT_NE(light, dark);
  EXPECT_EQ(pictures.identityFor(Qt::white), light);
  EXPECT_EQ(pictures.identityFor(Qt::black), dark);
}

TEST(BezelPicture, IsCachedForFewColoursOnly) {
  BezelPictures pictures;
  const qint64 first = pictures.identityFor(QColor(1, 0, 0));
  for (int i = 2; i < 20; ++i) pictures.identityFor(QColor(i, 0, 0));
  EXPECT_NE(pictures.identityFor(QColor(1, 0, 0)), first);
}

}  // namespace
