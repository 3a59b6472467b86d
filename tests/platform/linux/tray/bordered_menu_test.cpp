#include "platform/linux/tray/bordered_menu.h"

#include <gtest/gtest.h>

#include <QImage>

#include "platform/linux/desktop/appearance.h"
#include "platform/linux/desktop/color_contrast.h"

namespace {

class BorderedMenu : public testing::TestWithParam<bool> {
 protected:
  void SetUp() override { platform::applyAppearance(GetParam()); }
  void TearDown() override { platform::applyAppearance(false); }
};

TEST_P(BorderedMenu, BorderIsVisibleOnAllSidesBesideHighlightedItem) {
  platform::BorderedMenu menu;
  menu.addAction(QStringLiteral("One"));
  menu.addAction(QStringLiteral("Two"));
  menu.resize(menu.sizeHint());
  menu.setActiveAction(menu.actions().first());
  const QImage seen = menu.grab().toImage();
  const QColor background = menu.palette().color(QPalette::Window);
  const QColor border = seen.pixelColor(0, 0);
  EXPECT_GE(platform::contrastRatio(border, background), 3);
  for (int y = 0; y < seen.height(); ++y) {
    EXPECT_EQ(seen.pixelColor(0, y), border) << y;
    EXPECT_EQ(seen.pixelColor(seen.width() - 1, y), border) << y;
  }
  for (int x = 0; x < seen.width(); ++x) {
    EXPECT_EQ(seen.pixelColor(x, 0), border) << x;
    EXPECT_EQ(seen.pixelColor(x, seen.height() - 1), border) << x;
  }
}

INSTANTIATE_TEST_SUITE_P(Appearance, BorderedMenu, testing::Bool(),
                         [](const auto& test) { return test.param ? "Dark" : "Light"; });

}  // namespace
