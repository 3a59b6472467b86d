#include "platform/menu_item.h"

#include <QIcon>

#include "platform/linux/images/image_impl.h"
#include "platform/linux/tray/fixed_size_icon.h"
#include "platform/linux/tray/menu_item_impl.h"
#include "platform/linux/windows/text_impl.h"

namespace platform {

MenuItem::MenuItem(std::string_view title, std::function<void()> action) : impl_(std::make_unique<Impl>()) {
  setTitle(title);
  setEnabled(action != nullptr);
  impl_->line.setIconVisibleInMenu(true);
  impl_->action = std::move(action);
  QObject::connect(&impl_->line, &QAction::triggered, &impl_->line, [this] { impl_->choose(); });
}

// Posts the action, so that the panel receives the reply to its call before an action that may take long.
void MenuItem::Impl::choose() {
  if (!action || pending == maxPending) return;
  ++pending;
  QMetaObject::invokeMethod(
      &line,
      [this] {
        --pending;
        action();
      },
      Qt::QueuedConnection);
}

MenuItem::~MenuItem() = default;

std::unique_ptr<MenuItem> MenuItem::separatorItem() {
  auto item = std::make_unique<MenuItem>("", nullptr);
  item->impl_->line.setSeparator(true);
  return item;
}

std::string MenuItem::title() const {
  return impl_->title;
}

void MenuItem::setTitle(std::string_view title) {
  impl_->title = title;
  impl_->line.setText(withoutMnemonic(textOf(title)));
}

void MenuItem::setEnabled(bool enabled) {
  impl_->line.setEnabled(enabled);
}

void MenuItem::setImage(const std::shared_ptr<Image>& image) {
  impl_->line.setIcon(image == nullptr ? QIcon() : fixedSizeIcon(image->impl().pixmap()));
}

void MenuItem::setView(std::unique_ptr<WebView> view) {
  impl_->view = std::move(view);
  impl_->line.setVisible(impl_->view == nullptr);
}

}  // namespace platform
