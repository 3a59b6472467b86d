#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QGuiApplication>
#include <QLabel>
#include <QPushButton>

#include "platform/linux/desktop/appearance.h"
#include "platform/linux/desktop/color_contrast.h"
#include "tests/harness/desktop/x_windows.h"
#include "tests/platform/linux/windows/support_layout.h"
#include "tests/platform/linux/windows/window_fixture.h"

namespace {

// Tests the layout of a window with every kind of control on the display.
class WindowLayout : public WindowFixture {
 protected:
  [[nodiscard]] static QWidget* labelled(const platform::Window& window, const QString& text) {
    for (QLabel* label : widgetOf(window).findChildren<QLabel*>())
      if (label->text() == text) return label;
    return nullptr;
  }

  [[nodiscard]] static QWidget* named(const platform::Window& window, const QString& name) {
    for (QWidget* widget : widgetOf(window).findChildren<QWidget*>())
      if (widget->accessibleName() == name) return widget;
    return nullptr;
  }

  [[nodiscard]] static QRect place(const QWidget& widget) {
    return {widget.mapTo(widget.window(), QPoint(0, 0)), widget.size()};
  }

  // Returns the grey value (0: black) of the darkest pixel of the widget.
  [[nodiscard]] static int darkestIn(const QWidget& widget) {
    const QImage seen = widget.window()->grab(place(widget)).toImage();
    int darkest = 255;
    for (int y = 0; y < seen.height(); ++y)
      for (int x = 0; x < seen.width(); ++x) darkest = std::min(darkest, qGray(seen.pixel(x, y)));
    return darkest;
  }

  [[nodiscard]] static std::string nameOf(const QWidget* widget, QAccessible::Role role) {
    auto* interface = QAccessible::queryAccessibleInterface(const_cast<QWidget*>(widget));
    if (interface == nullptr || interface->role() != role) return "of another role";
    return interface->text(QAccessible::Name).toStdString();
  }

  void TearDown() override { platform::applyAppearance(false); }
};

TEST_F(WindowLayout, ControlsHaveTheirFrames) {
  const SupportLayout layout;
  ASSERT_TRUE(show(*layout.window));
  EXPECT_EQ(place(widgetOf(*layout.update)), QRect(10, 155, 120, 45));
  EXPECT_EQ(place(widgetOf(*layout.faq)), QRect(150, 155, 120, 45));
  EXPECT_EQ(place(widgetOf(*layout.log)), QRect(290, 155, 120, 45));
  EXPECT_EQ(place(widgetOf(*layout.firstLink)), QRect(140, 55, 280, 20));
  EXPECT_EQ(place(widgetOf(*layout.secondLink)), QRect(140, 85, 280, 20));
  EXPECT_EQ(place(*labelled(*layout.window, "Tovalin")), QRect(0, 81, 140, 30));
  EXPECT_EQ(place(*labelled(*layout.window, "Version 12.34.56")), QRect(0, 105, 140, 30));
  EXPECT_EQ(place(*labelled(*layout.window, "Notice")), QRect(135, 25, 280, 30));
  EXPECT_EQ(place(*labelled(*layout.window, "Copyright Kesmoor. All rights reserved.")),
            QRect(0, 135, 420, 20));
  EXPECT_EQ(place(*named(*layout.window, "Product icon")), QRect(0, 10, 140, 65));
  EXPECT_EQ(place(*named(*layout.window, "Banner")), QRect(0, 200, 420, 40));
  savePicture("online");
  layout.window->close();
}

TEST_F(WindowLayout, DescriptionHasItsFrame) {
  const SupportLayout layout(false);
  ASSERT_TRUE(show(*layout.window));
  EXPECT_EQ(place(widgetOf(*layout.description)), QRect(140, 55, 240, 60));
  layout.window->close();
}

TEST_F(WindowLayout, FontSizesAreInPoints) {
  const SupportLayout layout;
  const auto sizeOf = [&](const char* text) { return labelled(*layout.window, text)->font().pixelSize(); };
  EXPECT_EQ(sizeOf("Tovalin"), 20);
  EXPECT_EQ(sizeOf("Notice"), 14);
  EXPECT_TRUE(labelled(*layout.window, "Notice")->font().bold());
  EXPECT_EQ(sizeOf("Copyright Kesmoor. All rights reserved."), 10);
  EXPECT_EQ(widgetOf(*layout.firstLink).font().pixelSize(), 12);
  EXPECT_EQ(widgetOf(*SupportLayout(false).description).font().pixelSize(), 11);
}

TEST_F(WindowLayout, WindowHasScaledSizeAndIsCentred) {
  const SupportLayout layout;
  ASSERT_TRUE(show(*layout.window));
  const int scale = static_cast<int>(qGuiApp->devicePixelRatio());
  const auto window = test_support::waitForWindow(display(), test_support::windowNamed("Support Tovalin"));
  ASSERT_TRUE(window);
  EXPECT_EQ(window->width, 420 * scale);
  EXPECT_EQ(window->height, 240 * scale);
  EXPECT_NEAR(window->x + window->width / 2.0, 640, 10);
  EXPECT_NEAR(window->y + window->height / 2.0, 400, 20);
  layout.window->close();
}

TEST_F(WindowLayout, NoTextIsTruncated) {
  for (const bool online : {true, false}) {
    const SupportLayout layout(online);
    ASSERT_TRUE(show(*layout.window));
    for (const QLabel* label : widgetOf(*layout.window).findChildren<QLabel*>()) {
      if (layout.secondLink && label == &widgetOf(*layout.secondLink)) continue;  // ends in an ellipsis
      const QFontMetrics metrics(label->font());
      const int flags = (label->wordWrap() ? Qt::TextWordWrap : 0) | Qt::AlignLeft;
      const QRect room =
          label->rect().intersected(QRect(label->mapFromParent(QPoint(0, 0)), label->parentWidget()->size()));
      const QRect needed = metrics.boundingRect(label->rect(), flags, label->text());
      EXPECT_LE(needed.width(), room.width()) << label->text().toStdString();
      EXPECT_LE(needed.height(), room.height()) << label->text().toStdString();
    }
    for (const auto& button : {layout.update, layout.faq, layout.log}) {
      const auto& push = static_cast<QPushButton&>(widgetOf(*button));
      EXPECT_LT(push.fontMetrics().horizontalAdvance(push.text()), push.width() - 20);
    }
    if (!online) savePicture("offline");
    layout.window->close();
  }
}

TEST_F(WindowLayout, TextIsReadableOnBackgroundColourInDarkAppearance) {
  const SupportLayout layout;
  layout.update->setEnabled(false);
  platform::applyAppearance(true);
  ASSERT_TRUE(show(*layout.window));
  const QWidget& content = widgetOf(*layout.window);
  const QColor grey(0xe6, 0xe6, 0xe6);
  EXPECT_TRUE(serveEventsUntil([&] { return colorAt(content, {410, 10}) == grey; }));
  EXPECT_EQ(colorAt(content, {5, 190}), grey);
  EXPECT_LT(darkestIn(*labelled(*layout.window, "Version 12.34.56")), 60);
  EXPECT_LT(darkestIn(widgetOf(*layout.log)), 60);
  EXPECT_LT(darkestIn(widgetOf(*layout.update)), 170);
  savePicture("dark");
  layout.window->close();
}

TEST_F(WindowLayout, TextsHaveOneTypeface) {
  const SupportLayout layout, offline(false);
  for (const platform::Window* window : {layout.window.get(), offline.window.get()}) {
    for (const QLabel* label : widgetOf(*window).findChildren<QLabel*>())
      EXPECT_EQ(label->font().family(), QGuiApplication::font().family()) << label->text().toStdString();
  }
}

TEST_F(WindowLayout, LinkColourIsReadableShadeOfPalettesOne) {
  using platform::contrastRatio;
  const QColor grey(0xe6, 0xe6, 0xe6), green(0, 0x70, 0), paleOnGrey(0x29, 0x80, 0xb9),
      forDarkWindows(0x6b, 0xb5, 0xff);
  const auto linkColour = [](const QColor& ofDesktop) {
    QPalette palette = QApplication::palette();
    palette.setColor(QPalette::Link, ofDesktop);
    QApplication::setPalette(palette);
    const SupportLayout layout;
    return widgetOf(*layout.firstLink).palette().color(QPalette::Link);
  };
  EXPECT_EQ(linkColour(green), green);
  EXPECT_EQ(linkColour(forDarkWindows), QColor(Qt::blue));
  const QColor darkened = linkColour(paleOnGrey);
  EXPECT_GE(contrastRatio(darkened, grey), 4.5);
  EXPECT_GT(darkened.blue(), darkened.red() + 40);
}

TEST_F(WindowLayout, LinkIsDrawnInColourOfLinks) {
  for (const bool dark : {false, true}) {
    platform::applyAppearance(dark);
    const SupportLayout layout;
    QWidget& link = widgetOf(*layout.firstLink);
    const QColor expected = link.palette().color(QPalette::Link);
    EXPECT_GE(platform::contrastRatio(expected, QColor(0xe6, 0xe6, 0xe6)), 4.5);
    // The underline has the colour without antialiasing.
    const QImage seen = widgetOf(*layout.window).grab(place(link)).toImage();
    int pixels = 0;
    for (int y = 0; y < seen.height(); ++y)
      for (int x = 0; x < seen.width(); ++x) pixels += seen.pixelColor(x, y) == expected ? 1 : 0;
    EXPECT_GT(pixels, 50) << dark;
  }
}

TEST_F(WindowLayout, ChangeToDarkAppearanceKeepsColours) {
  const SupportLayout layout;
  ASSERT_TRUE(show(*layout.window));
  const QImage light = widgetOf(*layout.window).grab().toImage();
  platform::applyAppearance(true);
  ASSERT_TRUE(settle(*layout.window));
  EXPECT_EQ(widgetOf(*layout.window).grab().toImage().pixelColor(5, 5), light.pixelColor(5, 5));
  EXPECT_LT(darkestIn(*labelled(*layout.window, "Notice")), 60);
  layout.window->close();
}

TEST_F(WindowLayout, ExposesControlsToAccessibility) {
  const SupportLayout layout;
  ASSERT_TRUE(show(*layout.window));
  EXPECT_EQ(nameOf(&widgetOf(*layout.update), QAccessible::Button), "Update");
  EXPECT_EQ(nameOf(&widgetOf(*layout.log), QAccessible::Button), "Log file");
  EXPECT_EQ(nameOf(labelled(*layout.window, "Notice"), QAccessible::StaticText), "Notice");
  EXPECT_EQ(nameOf(&widgetOf(*layout.firstLink), QAccessible::Link), "A short subject");
  const auto widgets = widgetOf(*layout.window).findChildren<QWidget*>();
  EXPECT_TRUE(std::ranges::any_of(
      widgets, [](const QWidget* widget) { return nameOf(widget, QAccessible::Graphic) == "Product icon"; }));
  layout.window->close();
}

TEST_F(WindowLayout, FirstEnabledButtonIsFocusedInitially) {
  const SupportLayout layout;
  layout.update->setEnabled(false);
  ASSERT_TRUE(show(*layout.window));
  EXPECT_TRUE(widgetOf(*layout.faq).hasFocus());
  layout.window->close();
}

TEST_F(WindowLayout, TabFollowsOrderOnScreen) {
  const SupportLayout layout;
  ASSERT_TRUE(show(*layout.window));
  widgetOf(*layout.log).setFocus();
  using View = platform::View;
  for (const View* next :
       std::initializer_list<const View*>{layout.firstLink.get(), layout.secondLink.get(),
                                          layout.update.get(), layout.faq.get(), layout.log.get()}) {
    press("Tab");
    EXPECT_TRUE(serveEventsUntil([&] { return widgetOf(*next).hasFocus(); }));
  }
  layout.window->close();
}

TEST_F(WindowLayout, FocusIsVisible) {
  const SupportLayout layout;
  ASSERT_TRUE(show(*layout.window));
  widgetOf(*layout.faq).setFocus();
  for (const platform::View* view : {static_cast<const platform::View*>(layout.log.get()),
                                     static_cast<const platform::View*>(layout.firstLink.get())}) {
    const QWidget& widget = widgetOf(*view);
    const QImage before = widget.window()->grab(place(widget)).toImage();
    press("Tab");
    ASSERT_TRUE(serveEventsUntil([&] { return widget.hasFocus(); }));
    EXPECT_TRUE(serveEventsUntil([&] { return widget.window()->grab(place(widget)).toImage() != before; }));
    savePicture("focus-" + widget.window()->focusWidget()->property("text").toString().toStdString());
  }
  layout.window->close();
}

}  // namespace
