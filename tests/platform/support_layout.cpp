#include "tests/platform/support_layout.h"

#include "platform/image.h"
#include "platform/image_view.h"

namespace {

using namespace platform;

std::shared_ptr<TextField> label(Rect frame, const char* text, TextAlignment alignment) {
  auto field = std::make_shared<TextField>(frame);
  field->setText(text);
  field->setAlignment(alignment);
  return field;
}

std::shared_ptr<TextView> textView(Rect frame, double fontSize) {
  auto view = std::make_shared<TextView>(frame);
  view->setAlignment(TextAlignment::Left);
  view->setFont(fontSize);
  view->setDrawsBackground(false);
  view->setEditable(false);
  return view;
}

std::shared_ptr<TextView> link(Rect frame, const char* subject, const char* address) {
  auto view = textView(frame, 12);
  view->setSelectable(true);
  view->setAttributedString(subject, {true, blueColor(), address, true});
  view->setTruncatesTail(true);
  return view;
}

std::shared_ptr<View> headerPanel() {
  auto panel = std::make_shared<View>(Rect{0, 105, 135, 135});
  auto icon = std::make_shared<ImageView>(Rect{0, 60, 140, 65});
  auto picture = imageNamed("icon.png");
  if (picture) {
    picture->setScalesWhenResized(true);
    picture->setSize({80, 80});
  }
  icon->setImage(picture);
  icon->setAccessibilityLabel("Product icon");
  auto name = label({0, 24, 140, 30}, "Tovalin", TextAlignment::Center);
  name->setFont(20);
  panel->addSubview(std::move(icon));
  panel->addSubview(std::move(name));
  panel->addSubview(label({0, 0, 140, 30}, "Version 12.34.56", TextAlignment::Center));
  return panel;
}

std::shared_ptr<Button> button(SupportLayout& layout, double x, const char* title) {
  auto made = std::make_shared<Button>(Rect{x, 0, 120, 45});
  made->setTitle(title);
  made->setBezelStyle(Button::BezelStyle::Rounded);
  made->setAction([&layout, title] { layout.clicks.emplace_back(title); });
  return made;
}

std::shared_ptr<View> noticePanel(SupportLayout& layout, bool online) {
  auto panel = std::make_shared<View>(Rect{135, 105, 285, 135});
  auto heading = label({0, 80, 280, 30}, "Notice", TextAlignment::Left);
  heading->setFont({14, true});
  panel->addSubview(std::move(heading));
  if (online) {
    layout.firstLink = link({5, 60, 280, 20}, "A short subject", "http://one.example/");
    layout.secondLink =
        link({5, 30, 280, 20}, "A subject so long that it can't stand on one line of its panel",
             "http://two.example/?a=b&c=d");
    panel->addSubview(layout.firstLink);
    panel->addSubview(layout.secondLink);
  } else {
    layout.description = textView({5, 20, 240, 60}, 11);
    layout.description->setString(
        " You can easily manage the files in your iDevice without using iTunes.\n You can transfer contents "
        "via Finder.\n Also, you don't need to jailbreak.");
    panel->addSubview(layout.description);
  }
  return panel;
}

std::shared_ptr<View> buttonBand(const SupportLayout& layout) {
  auto band = std::make_shared<View>(Rect{0, 40, 420, 65});
  for (const auto& each : {layout.update, layout.faq, layout.log}) band->addSubview(each);
  auto copyright = label({0, 45, 420, 20}, "Copyright Kesmoor. All rights reserved.", TextAlignment::Center);
  copyright->setFont(10);
  band->addSubview(std::move(copyright));
  return band;
}

std::shared_ptr<View> bannerBand() {
  auto band = std::make_shared<View>(Rect{0, 0, 420, 40});
  auto banner = std::make_shared<ImageView>(Rect{0, 0, 420, 40});
  banner->setImage(imageNamed("Tovalinbanner.png"));
  banner->setAccessibilityLabel("Banner");
  band->addSubview(std::move(banner));
  return band;
}

}  // namespace

SupportLayout::SupportLayout(bool online) {
  window = Window::make({0, 0, 420, 240}, WindowStyle::TitledClosable);
  window->setTitle("Support Tovalin");
  update = button(*this, 10, "Update");
  faq = button(*this, 150, "FAQ");
  log = button(*this, 290, "Log file");
  View& content = window->contentView();
  content.addSubview(headerPanel());
  content.addSubview(noticePanel(*this, online));
  content.addSubview(buttonBand(*this));
  content.addSubview(bannerBand());
  window->setBackgroundColor(colorFromHsb(0, 0, 0.9));
  window->center();
}
