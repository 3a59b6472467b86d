#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace platform {

class Image;
class WebView;

// One line of a menu. Main thread only.
class MenuItem {
 public:
  // The action is called from the run loop when the item is chosen, never from inside another action that is
  // at work without a run loop. An item without an action is disabled unless setEnabled says otherwise.
  MenuItem(std::string_view title, std::function<void()> action);
  [[nodiscard]] static std::unique_ptr<MenuItem> separatorItem();
  ~MenuItem();
  MenuItem(const MenuItem&) = delete;
  MenuItem& operator=(const MenuItem&) = delete;

  [[nodiscard]] std::string title() const;
  void setTitle(std::string_view title);
  void setEnabled(bool enabled);
  // The picture beside the title, at its own size; nullptr for none.
  void setImage(const std::shared_ptr<Image>& image);
  // Puts a hidden web view into the item's place, owned by the item: the item then takes no more
  // room than that.
  void setView(std::unique_ptr<WebView> view);

  struct Impl;  // for the bodies of platform/ alone
  [[nodiscard]] Impl& impl() const { return *impl_; }

 private:
  std::unique_ptr<Impl> impl_;
};

}  // namespace platform
