#include "support/support_controls.h"

#include "platform/button.h"
#include "platform/text_field.h"
#include "platform/text_view.h"

std::shared_ptr<platform::TextField> makeLabel(platform::Rect frame, std::string_view text,
                                               platform::TextAlignment alignment, platform::Font font) {
  auto label = std::make_shared<platform::TextField>(frame);
  label->setText(text);
  label->setAlignment(alignment);
  label->setFont(font);
  return label;
}

std::shared_ptr<platform::Button> makePushButton(platform::Rect frame, std::string_view title,
                                                 std::function<void()> action) {
  auto button = std::make_shared<platform::Button>(frame);
  button->setTitle(title);
  button->setBezelStyle(platform::Button::BezelStyle::Rounded);
  button->setAction(std::move(action));
  return button;
}

std::shared_ptr<platform::TextView> makeTextView(platform::Rect frame, double fontSize) {
  auto view = std::make_shared<platform::TextView>(frame);
  view->setAlignment(platform::TextAlignment::Left);
  view->setFont(fontSize);
  view->setDrawsBackground(false);
  view->setEditable(false);
  return view;
}
