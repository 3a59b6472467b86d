#include "platform/alert.h"

#include <utility>
#include <vector>

#include "platform/linux/images/image_impl.h"
#include "platform/linux/windows/text_impl.h"
#include "platform/linux/windows/window_impl.h"
#include "platform/window.h"

namespace platform {
namespace {

constexpr double maxIconSide = 64;

QPixmap iconPicture(const Image* icon) {
  if (icon == nullptr || !icon->isValid()) return {};
  const Size size = icon->size();
  const double shrink = icon->impl().shrinkInto({maxIconSide, maxIconSide});
  const double scale = backingScale();
  const QSize pixels = (QSizeF(size.width, size.height) * shrink * scale).toSize();
  QPixmap picture = QPixmap::fromImage(icon->impl().scaledTo(pixels));
  picture.setDevicePixelRatio(scale);
  return picture;
}

}  // namespace

struct Alert::Impl {
  std::vector<QString> buttons;
  QString message;
  std::shared_ptr<Image> icon;
};

Alert::Alert() : impl_(std::make_unique<Impl>()) {}
Alert::~Alert() = default;

void Alert::addButton(std::string_view title) {
  impl_->buttons.push_back(textOf(title));
}

void Alert::setMessageText(std::string_view text) {
  impl_->message = textOf(text);
}

void Alert::setAlertStyle(Style) {}

void Alert::setIcon(std::shared_ptr<Image> icon) {
  impl_->icon = std::move(icon);
}

void Alert::beginSheetModalForWindow(const std::shared_ptr<Window>& window, std::function<void(int)> didEnd) {
  SheetContent content{impl_->buttons, impl_->message, iconPicture(impl_->icon.get())};
  if (content.buttons.empty()) content.buttons = {QStringLiteral("OK")};
  window->impl().sheets.begin(std::move(content), [didEnd = std::move(didEnd)](int index) {
    if (didEnd) didEnd(alertFirstButtonReturn + index);
  });
}

}  // namespace platform
