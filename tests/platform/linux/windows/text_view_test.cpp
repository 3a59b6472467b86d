#include "platform/text_view.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QClipboard>
#include <QGuiApplication>
#include <QImage>

#include "tests/platform/linux/windows/support_layout.h"
#include "tests/platform/linux/windows/window_fixture.h"

namespace {

using Addresses = std::vector<std::string>;

class TextViewInWindow : public WindowFixture {
 protected:
  void SetUp() override {
    WindowFixture::SetUp();
    ASSERT_TRUE(show(*layout_.window));
  }
  void TearDown() override { layout_.window->close(); }

  // Returns the addresses opened once all input so far is handled.
  [[nodiscard]] Addresses openedInAll() {
    EXPECT_TRUE(settle(*layout_.window));
    return openedAddresses();
  }

  // Returns the first and last column, in points, with blue pixels.
  [[nodiscard]] static std::pair<int, int> blueColumns(QWidget& view) {
    const QImage seen = view.grab().toImage();
    std::pair columns(view.width(), -1);
    for (int y = 0; y < seen.height(); ++y) {
      for (int x = 0; x < seen.width(); ++x) {
        const QColor color = seen.pixelColor(x, y);
        if (color.blue() < 200 || color.red() > 60) continue;
        const int column = static_cast<int>(x / seen.devicePixelRatio());
        columns = {std::min(columns.first, column), std::max(columns.second, column)};
      }
    }
    return columns;
  }

  SupportLayout layout_;
};

TEST_F(TextViewInWindow, ClickOnLinkOpensAddressVerbatim) {
  click(widgetOf(*layout_.secondLink), {20, 7});
  EXPECT_EQ(openedInAll(), (Addresses{"http://two.example/?a=b&c=d"}));
}

TEST_F(TextViewInWindow, ClickNextToLinkOpensNothing) {
  click(widgetOf(*layout_.firstLink), {250, 7});
  click(widgetOf(*layout_.firstLink), {20, 18});
  EXPECT_EQ(openedInAll(), Addresses{});
}

TEST_F(TextViewInWindow, FocusedLinkOpensOnReturnAndSpace) {
  widgetOf(*layout_.firstLink).setFocus();
  press("Return");
  press("space");
  EXPECT_EQ(openedInAll(), (Addresses{"http://one.example/", "http://one.example/"}));
}

TEST_F(TextViewInWindow, AutoRepeatOpensLinkOnce) {
  holdReturnAndPressItAgain(widgetOf(*layout_.firstLink));
  EXPECT_EQ(openedInAll(), (Addresses{"http://one.example/", "http://one.example/"}));
}

TEST_F(TextViewInWindow, AccessibilityPressOpensLink) {
  auto* interface = QAccessible::queryAccessibleInterface(&widgetOf(*layout_.firstLink));
  ASSERT_NE(interface, nullptr);
  interface->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_EQ(openedAddresses(), (Addresses{"http://one.example/"}));
}

TEST_F(TextViewInWindow, PointingHandIsShownOverLinkTextOnly) {
  const QWidget& link = widgetOf(*layout_.firstLink);
  point(link, {20, 7});
  EXPECT_TRUE(serveEventsUntil([&] { return link.cursor().shape() == Qt::PointingHandCursor; }));
  point(link, {250, 7});
  EXPECT_TRUE(serveEventsUntil([&] { return link.cursor().shape() == Qt::ArrowCursor; }));
}

TEST_F(TextViewInWindow, LinkIsBlueAndUnderlined) {
  const auto [first, last] = blueColumns(widgetOf(*layout_.firstLink));
  // Leaves space for the focus ring.
  EXPECT_GE(first, 3);
  EXPECT_LE(first, 5);
  EXPECT_GT(last, 60);
  EXPECT_LT(last, 140);
}

TEST_F(TextViewInWindow, OverlongTextEndsWithEllipsis) {
  QWidget& link = widgetOf(*layout_.secondLink);
  const auto before = link.grab().toImage();
  // The frame ends at the window's edge.
  EXPECT_LT(blueColumns(link).second, 270);
  EXPECT_GT(blueColumns(link).second, 255);
  layout_.secondLink->setTruncatesTail(false);
  EXPECT_NE(link.grab().toImage(), before);
}

TEST_F(TextViewInWindow, TruncatedTextReplacesLineBreaksWithSpaces) {
  layout_.firstLink->setAttributedString("One\ntwo",
                                         {true, platform::blueColor(), "http://x.example/", true});
  const QImage broken = widgetOf(*layout_.firstLink).grab().toImage();
  layout_.firstLink->setAttributedString("One two", {true, platform::blueColor(), "http://x.example/", true});
  EXPECT_EQ(widgetOf(*layout_.firstLink).grab().toImage(), broken);
}

TEST_F(TextViewInWindow, AttributedStringUsesDefaultFontInsteadOfSetOne) {
  layout_.firstLink->setFont(platform::Font(30, true));
  layout_.firstLink->setAttributedString("Text", {true, platform::blueColor(), "http://x.example/", true});
  const QFont& font = widgetOf(*layout_.firstLink).font();
  EXPECT_EQ(font.pixelSize(), 12);
  EXPECT_FALSE(font.bold());
  EXPECT_EQ(font.family(), QGuiApplication::font().family());
}

TEST_F(TextViewInWindow, PlainTextReplacesLink) {
  layout_.firstLink->setString("Plain");
  click(widgetOf(*layout_.firstLink), {10, 7});
  press("Return");
  EXPECT_EQ(openedInAll(), Addresses{});
  EXPECT_NE(widgetOf(*layout_.firstLink).focusPolicy(), Qt::StrongFocus);
}

class Description : public WindowFixture {
 protected:
  SupportLayout layout_{false};
};

TEST_F(Description, GrowsDownwardsWithText) {
  QWidget& view = widgetOf(*layout_.description);
  EXPECT_EQ(view.geometry().topLeft(), QPoint(5, 55));
  EXPECT_EQ(view.width(), 240);
  const int before = view.height();
  layout_.description->setString("1\n2\n3\n4\n5\n6\n7\n8");
  EXPECT_GT(view.height(), before);
  EXPECT_EQ(view.geometry().topLeft(), QPoint(5, 55));
}

TEST_F(Description, KeepsLeadingBlanksOfLines) {
  QWidget& view = widgetOf(*layout_.description);
  const QImage with = view.grab().toImage();
  layout_.description->setString("You can easily manage the files in your iDevice without using iTunes.");
  EXPECT_NE(view.grab().toImage().copy(0, 0, 20, 12), with.copy(0, 0, 20, 12));
}

TEST_F(Description, IsSelectableOnlyIfSet) {
  ASSERT_TRUE(show(*layout_.window));
  const QWidget& view = widgetOf(*layout_.description);
  for (const bool selectable : {false, true}) {
    layout_.description->setSelectable(selectable);
    QGuiApplication::clipboard()->clear();
    click(view, {30, 30});
    press("ctrl+a");
    press("ctrl+c");
    ASSERT_TRUE(settle(*layout_.window));
    EXPECT_EQ(QGuiApplication::clipboard()->text().contains(QStringLiteral("iDevice")), selectable);
  }
  layout_.window->close();
}

TEST_F(Description, DrawsBackgroundOnlyIfSet) {
  ASSERT_TRUE(show(*layout_.window));
  const QWidget& view = widgetOf(*layout_.description);
  const QPoint atTheSide(238, 2);
  EXPECT_TRUE(serveEventsUntil([&] { return colorAt(view, atTheSide) == QColor(0xe6, 0xe6, 0xe6); }));
  layout_.description->setDrawsBackground(true);
  EXPECT_TRUE(serveEventsUntil([&] { return colorAt(view, atTheSide) == QColor(Qt::white); }));
  layout_.window->close();
}

}  // namespace
