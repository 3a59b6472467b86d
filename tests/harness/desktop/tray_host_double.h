#pragma once

#include <map>
#include <string>
#include <vector>

#include "tests/harness/desktop/session_bus.h"
#include "tests/harness/processes/line_program.h"

namespace test_support {

struct TrayMenuItem {
  int id = 0;
  int parent = 0;  // 0: the menu itself
  bool separator = false;
  bool enabled = false;
  bool visible = false;
  bool checked = false;
  std::string iconSize = {};  // in pixels, "18x18"; "0x0" without an icon
  std::string label = {};
};

// A desktop's tray as tray items see it over the bus, in a process of its own: org.kde.StatusNotifierWatcher
// with a host. All is about the item that was registered last. Killing the process is the loss of the tray;
// starting it again is its return.
//
// Events: "registered SERVICE PATH", "unregistered SERVICE PATH", the item's and its menu's signals by name
// ("NewIcon", "NewStatus Active", "NewToolTip", "LayoutUpdated", "ItemsPropertiesUpdated"), and the replies
// of the calls below: "clicked LABEL", "called Activate", or "failed clicked LABEL REASON".
class TrayHostDouble : public LineProgram {
 public:
  [[nodiscard]] bool start(const SessionBus& bus);

  // "SERVICE PATH" of each.
  [[nodiscard]] std::vector<std::string> items();
  // Id, Title, Status, Category, Menu, ItemIsMenu, ToolTip (its title), IconPixmap (the sizes) and so on, as
  // text.
  [[nodiscard]] std::map<std::string, std::string> properties();
  // Items below others follow them.
  [[nodiscard]] std::vector<TrayMenuItem> menu();
  // Tells the item that the menu is about to be shown, as desktops do; then comes the event "shown".
  [[nodiscard]] bool aboutToShow();

  // Both save a PNG. `size` is a width, or "22x22".
  [[nodiscard]] bool saveIcon(const std::string& file, const std::string& size);
  [[nodiscard]] bool saveMenuIcon(const std::string& label, const std::string& file);

  // Clicks the first item with this label, unless it is disabled or hidden; returns when the click is sent.
  // The event "clicked LABEL" comes when the program has dealt with it.
  [[nodiscard]] bool click(const std::string& label);
  // The same without asking the program first: in the menu as `menu` or `click` found it last.
  [[nodiscard]] bool clickKnown(const std::string& label);

  [[nodiscard]] bool activate(int x, int y);
  [[nodiscard]] bool secondaryActivate(int x, int y);
  [[nodiscard]] bool contextMenu(int x, int y);

  // Whether the watcher says that a host is there. It keeps its name on the bus either way.
  [[nodiscard]] bool setHostRegistered(bool registered);
};

}  // namespace test_support
