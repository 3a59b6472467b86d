#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <iomanip>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <QColor>
#include <QImage>
#include <QPoint>

#include "tests/harness/contrast.h"

// The contrast between the panel icons that the agent paints itself and panels of every grey, by the formula
// of WCAG 2.
namespace {

constexpr double leastContrast = 3;
constexpr int greys = 256;
// The reported contrast is that of at least this share of an icon's outline.
constexpr double shareOfOutline = 0.9;
constexpr int points = 20;

double luminance(const QColor& color) {
  return test_support::luminance(color.red(), color.green(), color.blue());
}

double contrast(const QColor& one, const QColor& other) {
  return test_support::contrastRatio(luminance(one), luminance(other));
}

QColor upon(const QColor& pixel, const QColor& panel) {
  const double alpha = pixel.alphaF();
  const auto mixed = [&](int above, int below) {
    return static_cast<int>(std::lround(alpha * above + (1 - alpha) * below));
  };
  return {mixed(pixel.red(), panel.red()), mixed(pixel.green(), panel.green()),
          mixed(pixel.blue(), panel.blue())};
}

bool isOpaque(const QImage& icon, QPoint at) {
  return icon.valid(at) && icon.pixelColor(at).alphaF() >= 0.5F;
}

std::vector<QPoint> pointsOf(const QRect& area) {
  std::vector<QPoint> all;
  for (int y = area.top(); y <= area.bottom(); ++y) {
    for (int x = area.left(); x <= area.right(); ++x) all.emplace_back(x, y);
  }
  return all;
}

constexpr std::array sides = {QPoint(1, 0), QPoint(-1, 0), QPoint(0, 1), QPoint(0, -1)};

// Returns the transparent pixels around the icon, including a margin of one pixel beyond its edges, but not
// those that the icon encloses.
std::set<std::pair<int, int>> outsideOf(const QImage& icon) {
  const QRect area = icon.rect().adjusted(-1, -1, 1, 1);
  std::set<std::pair<int, int>> outside;
  std::vector<QPoint> next = {area.topLeft()};
  while (!next.empty()) {
    const QPoint at = next.back();
    next.pop_back();
    if (!area.contains(at) || isOpaque(icon, at) || !outside.emplace(at.x(), at.y()).second) continue;
    for (const QPoint side : sides) next.push_back(at + side);
  }
  return outside;
}

// Returns the opaque pixels next to the outside.
std::vector<QPoint> outlineOf(const QImage& icon) {
  const auto outside = outsideOf(icon);
  std::vector<QPoint> outline = pointsOf(icon.rect());
  std::erase_if(outline, [&](QPoint at) {
    const auto isOutside = [&](QPoint side) { return outside.contains({(at + side).x(), (at + side).y()}); };
    return !isOpaque(icon, at) || std::ranges::none_of(sides, isOutside);
  });
  return outline;
}

// Returns the contrast with the panel that most of the outline has, or a pixel within one point of it.
double contrastOn(const QImage& icon, const std::vector<QPoint>& outline, int grey) {
  const QColor panel(grey, grey, grey);
  std::vector<double> ofPixels(static_cast<std::size_t>(icon.width()) *
                               static_cast<std::size_t>(icon.height()));
  const auto indexOf = [&](QPoint at) {
    return static_cast<std::size_t>(at.y()) * static_cast<std::size_t>(icon.width()) +
           static_cast<std::size_t>(at.x());
  };
  for (const QPoint at : pointsOf(icon.rect()))
    ofPixels[indexOf(at)] = contrast(upon(icon.pixelColor(at), panel), panel);

  const int near = icon.width() / points;
  std::vector<double> best;
  for (const QPoint at : outline) {
    const QRect around = QRect(at - QPoint(near, near), at + QPoint(near, near)).intersected(icon.rect());
    double highest = 1;
    for (const QPoint neighbour : pointsOf(around)) highest = std::max(highest, ofPixels[indexOf(neighbour)]);
    best.push_back(highest);
  }
  std::ranges::sort(best, std::ranges::greater());
  return best[static_cast<std::size_t>(shareOfOutline * static_cast<double>(best.size()))];
}

std::array<double, greys> contrastsOf(const QImage& icon) {
  const std::vector<QPoint> outline = outlineOf(icon);
  std::array<double, greys> all{};
  for (int grey = 0; grey < greys; ++grey)
    all[static_cast<std::size_t>(grey)] = contrastOn(icon, outline, grey);
  return all;
}

QImage pictureInBundle(const std::string& name) {
  const std::string bundle =
      std::string(std::getenv("TOVALIN_BUNDLE_ROOT")) + "/Tovalin.app/Contents/Resources/TovalinTray.app";
  return QImage(QString::fromStdString(bundle + "/Contents/Resources/" + name));
}

std::string tableRow(const std::string& name, const std::array<double, greys>& contrasts) {
  std::ostringstream row;
  row << "| `" << name << "` |" << std::fixed << std::setprecision(1);
  for (const std::size_t grey : {0U, 64U, 128U, 192U, 255U}) row << ' ' << contrasts[grey] << " |";
  const auto* const lowest = std::ranges::min_element(contrasts);
  row << ' ' << *lowest << " on grey " << lowest - contrasts.begin() << " |";
  return row.str();
}

std::string readMe() {
  std::ostringstream text;
  text << std::ifstream(TOVALIN_PICTURES_README).rdbuf();
  return text.str();
}

class PanelIcon : public testing::TestWithParam<const char*> {};

TEST_P(PanelIcon, StandsOutFromPanelsOfEveryGrey) {
  const QImage icon = pictureInBundle(GetParam());
  ASSERT_FALSE(icon.isNull());
  const auto contrasts = contrastsOf(icon);
  for (std::size_t grey = 0; grey < greys; ++grey)
    EXPECT_GE(contrasts[grey], leastContrast) << "grey " << grey;
  EXPECT_THAT(readMe(), testing::HasSubstr(tableRow(GetParam(), contrasts)));
}

INSTANTIATE_TEST_SUITE_P(Painted, PanelIcon,
                         testing::Values("mount on.png", "mount on@2x.png", "mount on@4x.png",
                                         "mount off.png", "mount off@2x.png", "mount off@4x.png",
                                         "mount on reverse.png", "mount on reverse@2x.png",
                                         "mount on reverse@4x.png", "mount off reverse.png",
                                         "mount off reverse@2x.png", "mount off reverse@4x.png"));

TEST(PanelIconContrast, MatchesExamplesOfWcag) {
  EXPECT_NEAR(contrast(Qt::black, Qt::white), 21, 1e-9);
  EXPECT_NEAR(contrast(QColor(118, 118, 118), Qt::white), 4.54, 0.005);
}

TEST(PanelIconContrast, OneColourIconIsLowOnThatColour) {
  QImage icon(points, points, QImage::Format_ARGB32);
  icon.fill(Qt::transparent);
  for (const QPoint at : pointsOf(QRect(4, 4, 12, 12))) icon.setPixelColor(at, QColor(60, 60, 60));
  const auto contrasts = contrastsOf(icon);
  EXPECT_DOUBLE_EQ(contrasts[60], 1);
  EXPECT_LT(contrasts[0], leastContrast);
  EXPECT_GT(contrasts[255], leastContrast);
}

// The contrast of a single dot does not count.
TEST(PanelIconContrast, IgnoresSmallPartOfOutline) {
  QImage icon(points, points, QImage::Format_ARGB32);
  icon.fill(Qt::transparent);
  for (const QPoint at : pointsOf(QRect(4, 4, 12, 12))) icon.setPixelColor(at, Qt::black);
  icon.setPixelColor(4, 4, Qt::white);
  EXPECT_DOUBLE_EQ(contrastsOf(icon)[0], 1);
}

}  // namespace
