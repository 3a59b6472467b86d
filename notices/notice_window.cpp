#include "notices/notice_window.h"

#include "notices/image_resize.h"
#include "platform/image.h"
#include "platform/image_view.h"
#include "platform/text_field.h"
#include "platform/window.h"

namespace {

std::shared_ptr<platform::View> leftPane(const NoticeLayout& layout) {
  auto pane = std::make_shared<platform::View>(layout.leftPane);
  auto icon = std::make_shared<platform::ImageView>(layout.iconView);
  icon->setImage(imageResize(platform::imageNamed("icon.png").get(), layout.iconSide, layout.iconSide));
  icon->setAccessibilityLabel("Tovalin");
  pane->addSubview(std::move(icon));
  return pane;
}

std::shared_ptr<platform::View> rightPane(const NoticeLayout& layout) {
  auto pane = std::make_shared<platform::View>(layout.rightPane);
  auto field = std::make_shared<platform::TextField>(layout.textField);
  field->setAlignment(platform::TextAlignment::Left);
  field->setText(layout.text);
  field->setFont(platform::Font(noticeFontSize));
  pane->addSubview(std::move(field));
  return pane;
}

}  // namespace

std::shared_ptr<platform::Window> makeNoticeWindow(const NoticeLayout& layout) {
  auto window = platform::Window::make(layout.window, platform::WindowStyle::Titled);
  if (window == nullptr) return nullptr;
  window->setTitle(noticeTitle);
  window->contentView().addSubview(leftPane(layout));
  window->contentView().addSubview(rightPane(layout));
  return window;
}
