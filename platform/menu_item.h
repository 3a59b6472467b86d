#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace platform {

class Image;
class WebView;

// One item of a menu. Main thread only.
class MenuItem {
 public:
  // The run loop calls `action` when the item is chosen, never while another action blocks the main thread.
  // An item without an action is disabled unless setEnabled enables it.
  MenuItem(std::string_view title, std::function<void()> action);
  [[nodiscard]] static std::unique_ptr<MenuItem> separatorItem();
  ~MenuItem();
  MenuItem(const MenuItem&) = delete;
  MenuItem& operator=(const MenuItem&) = delete;

  [[nodiscard]] std::string title() const;
  void setTitle(std::string_view title);
  void setEnabled(bool enabled);
  // The icon beside the title, shown at its own size; nullptr for none.
  void setImage(const std::shared_ptr<Image>& image);
  // Replaces the item by a hidden web view and takes ownership of the view. The item then takes no space in
  // the menu.
  void setView(std::unique_ptr<WebView> view);

  struct Impl;  // for implementations in platform/ only
  [[nodiscard]] Impl& impl() const { return *impl_; }

 private:
  std::unique_ptr<Impl> impl_;
};

}  // namespace platform
