#include "platform/alert.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QPushButton>

#include "platform/application.h"
#include "platform/linux/desktop/appearance.h"
#include "tests/harness/desktop/x_windows.h"
#include "tests/platform/linux/windows/support_layout.h"
#include "tests/platform/linux/windows/window_fixture.h"

namespace {

using platform::Alert;
using platform::Application;
using Codes = std::vector<int>;
using Titles = std::vector<std::string>;

class AlertSheet : public WindowFixture {
 protected:
  void SetUp() override {
    WindowFixture::SetUp();
    ASSERT_TRUE(show(*layout_.window));
  }
  void TearDown() override {
    layout_.window->close();
    platform::applyAppearance(false);
  }

  void ask(
      const Titles& buttons, const std::function<void()>& afterwards = [] {}) {
    Alert alert;
    for (const auto& title : buttons) alert.addButton(title);
    alert.setMessageText("Log file will be created. It takes a few minutes.");
    alert.setAlertStyle(Alert::Style::Warning);
    alert.setIcon(platform::imageNamed("icon.png"));
    alert.beginSheetModalForWindow(layout_.window, [this, afterwards](int code) {
      codes_.push_back(code);
      afterwards();
    });
  }

  // Returns a button of the open sheet, or null.
  [[nodiscard]] QPushButton* sheetButton(const char* title) {
    for (auto* button : sheetsPart<QPushButton>())
      if (button->text() == QLatin1StringView(title)) return button;
    return nullptr;
  }
  template <typename Widget>
  [[nodiscard]] QList<Widget*> sheetsPart() {
    QDialog* const panel = sheet();
    return panel == nullptr ? QList<Widget*>() : panel->findChildren<Widget*>();
  }
  [[nodiscard]] QDialog* sheet() {
    for (auto* panel : widgetOf(*layout_.window).findChildren<QDialog*>())
      if (!panel->parentWidget()->isHidden()) return panel;
    return nullptr;
  }

  [[nodiscard]] bool ends(std::size_t count = 1) {
    return serveEventsUntil([&] { return codes_.size() == count; });
  }

  SupportLayout layout_;
  Codes codes_;
};

TEST_F(AlertSheet, ReportsClickedButton) {
  ask({"Continue", "Cancel"});
  ASSERT_TRUE(settle(*layout_.window));
  savePicture("sheet");
  click(*sheetButton("Continue"));
  ASSERT_TRUE(ends());
  ask({"Continue", "Cancel"});
  click(*sheetButton("Cancel"));
  ASSERT_TRUE(ends(2));
  EXPECT_EQ(codes_, (Codes{platform::alertFirstButtonReturn, 1001}));
}

TEST_F(AlertSheet, ReturnPressesFirstButton) {
  ask({"Continue", "Cancel"});
  press("Return");
  ASSERT_TRUE(ends());
  EXPECT_EQ(codes_, Codes{1000});
}

TEST_F(AlertSheet, EscapePressesCancelOrElseClose) {
  ask({"Continue", "Cancel"});
  press("Escape");
  ASSERT_TRUE(ends());
  ask({"Close", "Contact us"});
  ASSERT_TRUE(settle(*layout_.window));
  savePicture("completion");
  press("Escape");
  ASSERT_TRUE(ends(2));
  EXPECT_EQ(codes_, (Codes{1001, 1000}));
}

TEST_F(AlertSheet, EscapeIsIgnoredWithoutCancelAndClose) {
  ask({"Continue", "Stop"});
  press("Escape");
  ASSERT_TRUE(settle(*layout_.window));
  EXPECT_NE(sheet(), nullptr);
  EXPECT_TRUE(layout_.window->isVisible());
  EXPECT_EQ(codes_, Codes{});
}

TEST_F(AlertSheet, TabCyclesButtonsAndFocusedButtonActs) {
  ask({"Continue", "Cancel"});
  press("Tab");
  press("Tab");
  press("Tab");
  ASSERT_TRUE(serveEventsUntil([&] { return sheetButton("Cancel")->hasFocus(); }));
  press("space");
  ASSERT_TRUE(ends());
  ask({"Continue", "Cancel"});
  press("shift+Tab");
  press("Return");
  ASSERT_TRUE(ends(2));
  EXPECT_EQ(codes_, (Codes{1001, 1001}));
}

TEST_F(AlertSheet, WithoutButtonsHasOk) {
  ask({});
  ASSERT_NE(sheetButton("OK"), nullptr);
  press("Return");
  ASSERT_TRUE(ends());
  EXPECT_EQ(codes_, Codes{1000});
}

TEST_F(AlertSheet, ReturnsImmediatelyAndReportsOnRunLoop) {
  ask({"Continue"});
  EXPECT_NE(sheet(), nullptr);
  sheetButton("Continue")->click();
  EXPECT_EQ(codes_, Codes{});
  ASSERT_TRUE(ends());
}

TEST_F(AlertSheet, BlocksControlsOfItsWindow) {
  ask({"Continue", "Cancel"});
  click(widgetOf(*layout_.log));
  click(widgetOf(*layout_.secondLink), {272, 7});  // outside the sheet
  press("Down");
  ASSERT_TRUE(settle(*layout_.window));
  EXPECT_EQ(layout_.clicks, Titles{});
  EXPECT_EQ(openedAddresses(), Titles{});
  EXPECT_FALSE(widgetOf(*layout_.log).hasFocus());
  press("Escape");
  ASSERT_TRUE(ends());
  click(widgetOf(*layout_.log));
  ASSERT_TRUE(settle(*layout_.window));
  EXPECT_EQ(layout_.clicks, Titles{"Log file"});
}

TEST_F(AlertSheet, DoesNotBlockOtherWindows) {
  SupportLayout other;
  ASSERT_TRUE(show(*other.window));
  ask({"Continue", "Cancel"});
  ASSERT_TRUE(show(*other.window));
  click(widgetOf(*other.faq));
  EXPECT_TRUE(serveEventsUntil([&] { return other.clicks == Titles{"FAQ"}; }));
  other.window->close();
}

TEST_F(AlertSheet, RestoresInputFocus) {
  widgetOf(*layout_.faq).setFocus();
  ask({"Continue", "Cancel"});
  EXPECT_FALSE(widgetOf(*layout_.faq).hasFocus());
  press("Escape");
  ASSERT_TRUE(ends());
  EXPECT_TRUE(widgetOf(*layout_.faq).hasFocus());
}

TEST_F(AlertSheet, BlocksAccessibilityActionsBehindIt) {
  const auto pressAll = [this] {
    for (const platform::View* view : {static_cast<const platform::View*>(layout_.update.get()),
                                       static_cast<const platform::View*>(layout_.firstLink.get())}) {
      auto* interface = QAccessible::queryAccessibleInterface(&widgetOf(*view));
      interface->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    }
  };
  ask({"Continue", "Cancel"});
  pressAll();
  press("Escape");
  ASSERT_TRUE(ends());
  auto& button = static_cast<QPushButton&>(widgetOf(*layout_.update));
  ASSERT_TRUE(serveEventsUntil([&] { return !button.isDown(); }));
  EXPECT_TRUE(layout_.clicks.empty() && openedAddresses().empty());
  pressAll();
  EXPECT_TRUE(serveEventsUntil([&] { return layout_.clicks == Titles{"Update"}; }));
  EXPECT_EQ(openedAddresses().size(), 1U);
}

TEST_F(AlertSheet, TabContinuesFromRestoredFocus) {
  widgetOf(*layout_.log).setFocus();
  ask({"Continue", "Cancel"});
  press("Escape");
  ASSERT_TRUE(ends());
  press("Tab");
  EXPECT_TRUE(serveEventsUntil([&] { return widgetOf(*layout_.firstLink).hasFocus(); }));
}

TEST_F(AlertSheet, DidEndMayBeginNextSheet) {
  ask({"Continue", "Cancel"}, [this] { ask({"Close", "Contact us"}); });
  press("Return");
  ASSERT_TRUE(serveEventsUntil([&] { return sheetButton("Contact us") != nullptr; }));
  click(*sheetButton("Contact us"));
  ASSERT_TRUE(ends(2));
  EXPECT_EQ(codes_, (Codes{1000, 1001}));
}

TEST_F(AlertSheet, SecondSheetWaitsForFirst) {
  ask({"First"});
  ask({"Close", "Second"});
  EXPECT_EQ(sheetButton("Second"), nullptr);
  press("Return");
  ASSERT_TRUE(serveEventsUntil([&] { return sheetButton("Second") != nullptr; }));
  EXPECT_EQ(codes_, Codes{1000});
  press("Escape");
  ASSERT_TRUE(ends(2));
}

// didEnd may block the run loop, so the covered area must be painted before.
TEST_F(AlertSheet, IsErasedFromDisplayBeforeDidEnd) {
  const QPoint beneath(210, 20);
  const QWidget& content = widgetOf(*layout_.window);
  const QColor grey(0xe6, 0xe6, 0xe6);
  ASSERT_TRUE(serveEventsUntil([&] { return colorAt(content, beneath) == grey; }));
  QColor atTheEnd;
  ask({"Continue"}, [&] { atTheEnd = colorAt(content, beneath); });
  ASSERT_TRUE(serveEventsUntil([&] { return colorAt(content, beneath) != grey; }));
  press("Return");
  ASSERT_TRUE(ends());
  EXPECT_EQ(atTheEnd, grey);
}

TEST_F(AlertSheet, CloseRequestOfItsWindowIsRefused) {
  ask({"Continue", "Cancel"});
  const auto window = test_support::waitForWindow(display(), test_support::windowNamed("Support Tovalin"));
  ASSERT_TRUE(window);
  test_support::deliverCloseRequest(display(), window->id);
  ASSERT_TRUE(settle(*layout_.window));
  EXPECT_TRUE(layout_.window->isVisible());
  press("Escape");
  ASSERT_TRUE(ends());
  test_support::requestClose(display(), window->id);
  EXPECT_TRUE(serveEventsUntil([&] { return !layout_.window->isVisible(); }));
}

TEST_F(AlertSheet, ClosedWindowEndsSheetWithoutDidEnd) {
  ask({"Continue"});
  ask({"Waiting"});
  layout_.window->close();
  const std::weak_ptr<platform::Window> window = layout_.window;
  layout_.window = platform::Window::make({0, 0, 300, 200}, platform::WindowStyle::TitledClosable);
  EXPECT_TRUE(serveEventsUntil([&] { return window.expired(); }));
  EXPECT_EQ(codes_, Codes{});
}

TEST_F(AlertSheet, PendingAnswerIsDiscardedIfWindowCloses) {
  ask({"Continue"});
  sheetButton("Continue")->click();
  layout_.window->close();
  ASSERT_FALSE(serveEventsUntil([&] { return !codes_.empty(); }, std::chrono::milliseconds(50)));
  ask({"Too late"});
  EXPECT_EQ(sheet(), nullptr);
}

TEST_F(AlertSheet, CloseRequestBetweenAnswerAndDidEndIsRefused) {
  ask({"Continue"});
  sheetButton("Continue")->click();
  EXPECT_FALSE(widgetOf(*layout_.window).close());
  ASSERT_TRUE(ends());
  ASSERT_TRUE(settle(*layout_.window));
  EXPECT_TRUE(widgetOf(*layout_.window).close());
}

TEST_F(AlertSheet, AcceptsInputInModalRunOfItsWindow) {
  Application& application = Application::sharedApplication();
  application.performOnMainThread([this, &application] {
    ask({"Continue", "Cancel"}, [&application] { application.stopModal(); });
    click(*sheetButton("Cancel"));
  });
  application.runModalForWindow(layout_.window);
  EXPECT_EQ(codes_, Codes{1001});
}

TEST_F(AlertSheet, IsCentredAtUpperEdgeWithCompleteTexts) {
  ask({"Continue", "Cancel"});
  const QRect panel(sheet()->mapTo(&widgetOf(*layout_.window), QPoint(0, 0)), sheet()->size());
  EXPECT_EQ(panel.top(), 0);
  EXPECT_NEAR(panel.center().x(), 210, 1);
  EXPECT_LE(panel.bottom(), 240);
  for (const QWidget* part : sheetsPart<QWidget>()) {
    EXPECT_TRUE(sheet()->rect().contains(part->geometry()));
    EXPECT_GE(part->height(), part->heightForWidth(part->width()));
    EXPECT_GE(part->width(), part->minimumSizeHint().width());
  }
  EXPECT_GT(sheetButton("Continue")->x(), sheetButton("Cancel")->geometry().right());
}

TEST_F(AlertSheet, IsReadableInDarkAppearance) {
  platform::applyAppearance(true);
  ask({"Continue", "Cancel"});
  ASSERT_TRUE(settle(*layout_.window));
  savePicture("sheet-dark");
  EXPECT_GT(qGray(sheet()->grab().toImage().pixel(8, 8)), 200);
}

TEST_F(AlertSheet, EachSentenceStartsOnLineOfItsOwn) {
  ask({"Continue", "Cancel"});
  const auto labels = sheetsPart<QLabel>();
  EXPECT_TRUE(std::ranges::any_of(labels, [](const QLabel* label) {
    return label->text() == QLatin1StringView("Log file will be created.\nIt takes a few minutes.");
  }));
}

TEST_F(AlertSheet, HasRoundLowerCornersAndShadow) {
  ask({"Continue", "Cancel"});
  const QWidget& content = widgetOf(*layout_.window);
  const QRect panel(sheet()->mapTo(&content, QPoint(0, 0)), sheet()->size());
  const QImage seen = widgetOf(*layout_.window).grab().toImage();
  const auto grey = [&](QPoint place) {
    return qGray(seen.pixel(place * static_cast<int>(seen.devicePixelRatio())));
  };
  const int inside = grey(panel.center() + QPoint(0, panel.height() / 2 - 8));
  EXPECT_LT(grey(panel.bottomLeft()), inside - 40);
  EXPECT_LT(grey(panel.bottomRight()), inside - 40);
  EXPECT_EQ(grey(panel.topLeft() + QPoint(3, 3)), inside) << "the upper corners are at the title bar";
  const int near = grey(panel.bottomLeft() + QPoint(40, 2)), far = grey(panel.bottomLeft() + QPoint(40, 12));
  EXPECT_LT(near, far - 10);
}

TEST_F(AlertSheet, ControlsBehindAreNeitherEnabledNorFocusableUntilItEnds) {
  const auto stateOf = [](const platform::View& view) {
    return QAccessible::queryAccessibleInterface(&widgetOf(view))->state();
  };
  layout_.faq->setEnabled(false);
  ask({"Continue", "Cancel"});
  EXPECT_TRUE(QAccessible::queryAccessibleInterface(sheet())->state().modal);
  const std::initializer_list<const platform::View*> behind{layout_.update.get(), layout_.log.get(),
                                                            layout_.firstLink.get()};
  for (const auto* view : behind) EXPECT_TRUE(stateOf(*view).disabled && !stateOf(*view).focusable);
  EXPECT_FALSE(QAccessible::queryAccessibleInterface(sheetButton("Cancel"))->state().disabled);
  EXPECT_TRUE(layout_.update->isEnabled()) << "the button itself was not disabled";
  layout_.update->setEnabled(false);
  press("Escape");
  ASSERT_TRUE(ends());
  EXPECT_FALSE(layout_.update->isEnabled());
  EXPECT_TRUE(stateOf(*layout_.update).disabled);
  EXPECT_TRUE(stateOf(*layout_.faq).disabled) << "disabled before";
  for (const platform::View* view : {static_cast<const platform::View*>(layout_.log.get()),
                                     static_cast<const platform::View*>(layout_.firstLink.get())})
    EXPECT_TRUE(!stateOf(*view).disabled && stateOf(*view).focusable);
}

TEST_F(AlertSheet, ExposesMessageAndButtonsToAccessibility) {
  ask({"Continue", "Cancel"});
  auto* interface = QAccessible::queryAccessibleInterface(sheet());
  ASSERT_NE(interface, nullptr);
  EXPECT_EQ(interface->role(), QAccessible::Dialog);
  EXPECT_EQ(interface->text(QAccessible::Name).toStdString(),
            "Log file will be created. It takes a few minutes.");
  auto* button = QAccessible::queryAccessibleInterface(sheetButton("Cancel"));
  EXPECT_EQ(button->text(QAccessible::Name).toStdString(), "Cancel");
}

}  // namespace
