#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "platform/image.h"
#include "platform/linux/tray/screen_pixels.h"
#include "platform/linux/tray/status_content.h"
#include "platform/linux/tray/tray_place.h"

namespace {

using platform::BusHost;
using platform::placeFor;
using platform::pointAtPixel;
using platform::StatusContent;
using platform::TrayPlace;

TEST(TrayPlace, PrefersHostOnBusThenTrayOnScreenThenCurrentPlace) {
  struct Row {
    TrayPlace current;
    BusHost host;
    bool trayOnScreen;
    TrayPlace place;
  };
  using enum TrayPlace;
  using enum BusHost;
  for (const Row& row : {
           Row{Nowhere, Unknown, false, Nowhere},
           Row{Nowhere, Unknown, true, Nowhere},
           Row{Nowhere, Absent, false, Nowhere},
           Row{Nowhere, Absent, true, Screen},
           Row{Nowhere, Present, false, Bus},
           Row{Nowhere, Present, true, Bus},
           Row{Bus, Unknown, true, Bus},
           Row{Bus, Absent, false, Bus},
           Row{Bus, Absent, true, Screen},
           Row{Bus, Present, true, Bus},
           Row{Screen, Unknown, true, Screen},
           Row{Screen, Absent, false, Screen},
           Row{Screen, Absent, true, Screen},
           Row{Screen, Present, true, Bus},
           Row{Screen, Present, false, Bus},
       })
    EXPECT_EQ(placeFor(row.current, row.host, row.trayOnScreen), row.place)
        << static_cast<int>(row.current) << " " << static_cast<int>(row.host) << " " << row.trayOnScreen;
}

TEST(PointAtPixel, IsQtsPointOnScreenThatContainsPixel) {
  const std::vector<platform::ScaledScreen> screens{{QRect(0, 0, 640, 400), 2},
                                                    {QRect(1280, 0, 1024, 768), 1}};
  struct Row {
    QPoint pixel;
    std::optional<QPoint> point;
  };
  for (const Row& row :
       {Row{{0, 0}, QPoint(0, 0)}, Row{{1279, 799}, QPoint(640, 400)}, Row{{100, 50}, QPoint(50, 25)},
        Row{{1280, 0}, QPoint(1280, 0)}, Row{{1300, 700}, QPoint(1300, 700)}, Row{{-1, 0}, std::nullopt},
        Row{{1279, 800}, std::nullopt}, Row{{3000, 10}, std::nullopt}})
    EXPECT_EQ(pointAtPixel(row.pixel, screens), row.point) << row.pixel.x() << " " << row.pixel.y();
  EXPECT_EQ(pointAtPixel({1, 1}, {}), std::nullopt);
}

TEST(StatusSignals, ContainOnlyChangedProperties) {
  const auto one = std::make_shared<platform::Image>(platform::Size{20, 20});
  const auto other = std::make_shared<platform::Image>(platform::Size{20, 20});
  const StatusContent before{.text = "On", .image = one, .symbol = "on"};
  struct Row {
    StatusContent after;
    QStringList names;
  };
  for (const Row& row :
       {Row{before, {}}, Row{{.text = "On", .image = other, .symbol = "on"}, {"NewIcon"}},
        Row{{.text = "On", .image = one, .symbol = "off"}, {"NewIcon"}},
        Row{{.text = "Off", .image = one, .symbol = "on"}, {"NewTitle", "NewToolTip"}},
        Row{{.text = "Off", .image = other, .symbol = ""}, {"NewIcon", "NewTitle", "NewToolTip"}}})
    EXPECT_EQ(platform::signalsOfChange(before, row.after), row.names);
}

TEST(Symbol, SourceDependsOnPanel) {
  using platform::SymbolSource;
  for (const char* process : {"kded5", "kded6", "plasmashell"})
    EXPECT_EQ(platform::symbolSourceOf(process), SymbolSource::Themes) << process;
  for (const char* process : {"lxqt-panel", "mate-panel", "notification-ar", "swaybar", "waybar"})
    EXPECT_EQ(platform::symbolSourceOf(process), SymbolSource::Nowhere) << process;
  for (const char* process : {"", "xfce4-panel", "panel-6-systray", "gnome-shell", "another-panel"})
    EXPECT_EQ(platform::symbolSourceOf(process), SymbolSource::Folder) << process;
}

TEST(Symbol, ThemesSourceNeedsInstalledIcon) {
  using platform::SymbolSource;
  const std::string symbols = "/tmp/data/icons/hicolor/symbolic/apps/";
  std::filesystem::create_directories(symbols);
  std::ofstream(symbols + "installed-symbolic.svg") << "<svg/>";
  qputenv("XDG_DATA_DIRS", "/tmp/data");
  EXPECT_EQ(platform::symbolIn(SymbolSource::Themes, "/tmp", "installed-symbolic"), "installed-symbolic");
  EXPECT_EQ(platform::symbolIn(SymbolSource::Themes, "/tmp/data/icons", "missing-symbolic"), "");
  EXPECT_EQ(platform::symbolIn(SymbolSource::Themes, "/tmp/data/icons", ""), "");
  EXPECT_EQ(platform::symbolIn(SymbolSource::Folder, "/tmp/data/icons", "installed-symbolic"),
            "installed-symbolic");
  EXPECT_EQ(platform::symbolIn(SymbolSource::Nowhere, "/tmp/data/icons", "installed-symbolic"), "");
}

TEST(Symbol, IsUsedOnlyIfItsFileExists) {
  const QString folder = "/tmp/symbols";
  std::filesystem::create_directories("/tmp/symbols/hicolor/symbolic/apps");
  std::ofstream("/tmp/symbols/hicolor/symbolic/apps/there-symbolic.svg") << "<svg/>";
  EXPECT_EQ(platform::symbolIn(platform::SymbolSource::Folder, folder, "there-symbolic"), "there-symbolic");
  EXPECT_EQ(platform::symbolIn(platform::SymbolSource::Folder, folder, "missing-symbolic"), "");
  EXPECT_EQ(platform::symbolIn(platform::SymbolSource::Folder, folder, ""), "");
  EXPECT_EQ(platform::symbolIn(platform::SymbolSource::Folder, "/tmp/nowhere", "there-symbolic"), "");
}

}  // namespace
