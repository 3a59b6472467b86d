#pragma once

#include <memory>
#include <string_view>

namespace platform {

class Image;
class Menu;

// One icon with a menu in the desktop's panel. It shows as soon as it has an image and the panel has room for
// such icons, comes back when the panel is started again, and goes away with this object. A click of either
// button opens the menu. Main thread only.
class StatusItem {
 public:
  static constexpr double variableLength = -1.0;

  // `length` is the room along the panel in points, or variableLength for what the icon takes.
  explicit StatusItem(double length);
  ~StatusItem();
  StatusItem(const StatusItem&) = delete;
  StatusItem& operator=(const StatusItem&) = delete;

  // The item's text, for panels that show one, beside the icon or as its hint.
  void setTitle(std::string_view title);
  // nullptr shows no icon.
  void setImage(std::shared_ptr<Image> image);
  // Whether the icon is marked while its menu is open. No effect on Linux, where panels decide; kept for
  // systems that let the program.
  void setHighlightMode(bool highlights);

  // Takes the menu over.
  void setMenu(std::unique_ptr<Menu> menu);
  // nullptr while there is none.
  [[nodiscard]] Menu* menu() const;
  // Opens the menu and returns at once: at the icon, or at the pointer where the panel doesn't tell the
  // icon's place or there is none.
  void popUpMenu();

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace platform
