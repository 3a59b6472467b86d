#pragma once

#include <map>
#include <string>
#include <vector>

#include "tests/harness/desktop/session_bus.h"
#include "tests/harness/processes/line_program.h"

namespace test_support {

struct TrayMenuItem {
  int id = 0;
  int parent = 0;  // 0: the root
  bool separator = false;
  bool enabled = false;
  bool visible = false;
  bool checked = false;
  std::string iconSize = {};  // in pixels, "18x18"; "0x0" without an icon
  std::string label = {};
};

// A fake desktop tray in its own process: org.kde.StatusNotifierWatcher with a host. All calls apply to the
// most recently registered item. Killing the process simulates the loss of the tray, starting it again its
// return.
//
// Events: "registered SERVICE PATH", "unregistered SERVICE PATH", the signals of the item and of its menu by
// name ("NewIcon", "NewStatus Active", "NewToolTip", "LayoutUpdated", "ItemsPropertiesUpdated"), and the
// replies to the calls below: "clicked LABEL", "called Activate", or "failed clicked LABEL REASON".
class TrayHostDouble : public LineProgram {
 public:
  // The agent knows panels by the names of their processes.
  [[nodiscard]] bool start(const SessionBus& bus, const char* processName = "xfce4-panel");

  // Returns "SERVICE PATH" for each item.
  [[nodiscard]] std::vector<std::string> items();
  // Returns Id, Title, Status, Category, Menu, ItemIsMenu, ToolTip (its title), IconPixmap (the sizes) and so
  // on as text.
  [[nodiscard]] std::map<std::string, std::string> properties();
  // Returns all items, parents before children.
  [[nodiscard]] std::vector<TrayMenuItem> menu();
  // Calls AboutToShow, as desktops do before they draw the menu. The event "shown" follows.
  [[nodiscard]] bool aboutToShow();

  // Both save a PNG. `size` is a width or, for example, "22x22".
  [[nodiscard]] bool saveIcon(const std::string& file, const std::string& size);
  [[nodiscard]] bool saveMenuIcon(const std::string& label, const std::string& file);

  // Clicks the first item with this label, unless it is disabled or hidden. Returns once the click is sent;
  // the event "clicked LABEL" follows when the program has replied.
  [[nodiscard]] bool click(const std::string& label);
  // Like `click`, but uses the menu that `menu` or `click` fetched last.
  [[nodiscard]] bool clickKnown(const std::string& label);

  [[nodiscard]] bool activate(int x, int y);
  [[nodiscard]] bool secondaryActivate(int x, int y);
  [[nodiscard]] bool contextMenu(int x, int y);

  // Sets the watcher's IsStatusNotifierHostRegistered. The watcher keeps its bus name either way.
  [[nodiscard]] bool setHostRegistered(bool registered);
};

}  // namespace test_support
