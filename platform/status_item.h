#pragma once

#include <chrono>
#include <memory>
#include <string_view>

namespace platform {

class Image;
class Menu;

// An icon with a menu in the desktop's panel. It is shown once it has an image and the panel accepts icons,
// reappears after the panel restarts, and is removed by the destructor. Clicks of the left and the right
// button open the menu, which panels on the session bus draw themselves. Main thread only.
class StatusItem {
 public:
  static constexpr double variableLength = -1.0;

  // `length` is the space along the panel in points, or variableLength for the width of the icon.
  explicit StatusItem(double length);
  ~StatusItem();
  StatusItem(const StatusItem&) = delete;
  StatusItem& operator=(const StatusItem&) = delete;

  // The item's text, for panels that show one beside the icon.
  void setTitle(std::string_view title);
  // The state in words: the icon's tooltip and its name for screen readers. If empty, the title is used.
  void setToolTip(std::string_view text);
  // nullptr shows no icon. `symbol` names a monochrome icon of the same meaning, which panels paint in their
  // own colour: on Linux the file hicolor/symbolic/apps/SYMBOL.svg below Contents/Resources/icons. If the
  // file is missing, in X trays and on other systems, the image is shown.
  void setImage(std::shared_ptr<Image> image, std::string_view symbol = {});
  // Whether the icon is highlighted while its menu is open. No effect on Linux, where the panel decides.
  void setHighlightMode(bool highlights);

  // Takes ownership of the menu.
  void setMenu(std::unique_ptr<Menu> menu);
  // Returns nullptr if no menu is set.
  [[nodiscard]] Menu* menu() const;
  // Opens the menu and returns at once. The menu opens at the icon, or at the pointer if the panel does not
  // report the icon's position or there is no icon.
  void popUpMenu();

  // From now on, shows a desktop notification if no panel shows the icon for `patience`; at most once per
  // session. No effect on a system whose panel shows every icon. Call once. Main thread only.
  void notifyIfHidden(std::chrono::milliseconds patience, std::string_view title, std::string_view text);

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace platform
