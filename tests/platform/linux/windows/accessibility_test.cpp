#include <gtest/gtest.h>

#include <QAccessible>

#include "platform/application.h"
#include "tests/platform/linux/windows/window_fixture.h"

namespace {

using platform::Application;
using platform::Window;
using platform::WindowStyle;

// Tests how a window is described to assistive technology.
class WindowAccess : public WindowFixture {
 protected:
  [[nodiscard]] static QAccessibleInterface& described(const Window& window) {
    return *QAccessible::queryAccessibleInterface(&widgetOf(window));
  }
};

TEST_F(WindowAccess, ClosableWindowIsDialogAndOtherOneAlert) {
  for (const auto& [style, role] : {std::pair(WindowStyle::TitledClosable, QAccessible::Dialog),
                                    std::pair(WindowStyle::Titled, QAccessible::AlertMessage)}) {
    const auto window = Window::make({0, 0, 100, 50}, style);
    window->setTitle("A title");
    EXPECT_EQ(described(*window).role(), role);
    EXPECT_EQ(described(*window).text(QAccessible::Name).toStdString(), "A title");
  }
}

TEST_F(WindowAccess, WindowOfInnermostModalRunIsModal) {
  const auto outer = Window::make({0, 0, 100, 50}, WindowStyle::Titled);
  const auto inner = Window::make({0, 0, 100, 50}, WindowStyle::Titled);
  const auto isModal = [](const auto& window) { return bool(described(*window).state().modal); };
  Application& application = Application::sharedApplication();
  EXPECT_FALSE(isModal(outer));
  application.performOnMainThread([&] {
    EXPECT_TRUE(isModal(outer));
    application.performOnMainThread([&] {
      EXPECT_TRUE(isModal(inner));
      EXPECT_FALSE(isModal(outer));
      application.stopModal();
    });
    application.runModalForWindow(inner);
    application.stopModal();
  });
  application.runModalForWindow(outer);
  EXPECT_FALSE(isModal(outer));
}

}  // namespace
