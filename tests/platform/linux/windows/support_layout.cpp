#include "tests/platform/linux/windows/support_layout.h"

#include "notices/image_resize.h"
#include "platform/image.h"
#include "platform/image_view.h"
#include "support/support_controls.h"
#include "support/support_layout.h"

namespace {

using namespace platform;

void addTo(View& parent, Rect frame, std::initializer_list<std::shared_ptr<View>> views) {
  auto panel = std::make_shared<View>(frame);
  for (const auto& view : views) panel->addSubview(view);
  parent.addSubview(std::move(panel));
}

std::shared_ptr<View> picture(Rect frame, std::shared_ptr<Image> image, const char* label) {
  auto view = std::make_shared<ImageView>(frame);
  view->setImage(std::move(image));
  view->setAccessibilityLabel(label);
  return view;
}

std::shared_ptr<TextView> link(Rect frame, const char* subject, const char* address) {
  auto view = makeTextView(frame, 12);
  view->setSelectable(true);
  view->setAttributedString(subject, {true, blueColor(), address, true});
  view->setTruncatesTail(true);
  return view;
}

}  // namespace

SupportLayout::SupportLayout(bool online) {
  const auto button = [this](Rect frame, const char* title) {
    return makePushButton(frame, title, [this, title] { clicks.emplace_back(title); });
  };
  window = Window::make(support_layout::window, WindowStyle::TitledClosable);
  window->setTitle("Support Tovalin");
  window->setBackgroundColor(colorFromHsb(0, 0, 0.9));
  View& content = window->contentView();
  constexpr double side = support_layout::iconSide;
  addTo(content, support_layout::headerPanel,
        {picture(support_layout::icon, imageResize(imageNamed("icon.png").get(), side, side), "Product icon"),
         makeLabel(support_layout::nameLabel, "Tovalin", TextAlignment::Center, 20),
         makeLabel(support_layout::versionLabel, "Version 12.34.56", TextAlignment::Center, 12)});
  update = button(support_layout::updateButton, "Update");
  faq = button(support_layout::faqButton, "FAQ");
  log = button(support_layout::logButton, "Log file");
  addNotice(online);
  addTo(content, support_layout::buttonBand,
        {update, faq, log,
         makeLabel(support_layout::copyrightLabel, "Copyright Kesmoor. All rights reserved.",
                   TextAlignment::Center, 10)});
  addTo(content, support_layout::bannerBand,
        {picture(support_layout::banner, imageNamed("Tovalinbanner.png"), "Banner")});
  window->center();
}

void SupportLayout::addNotice(bool online) {
  const auto heading =
      makeLabel(support_layout::noticeHeading, "Notice", TextAlignment::Left, Font(14, true));
  View& content = window->contentView();
  if (online) {
    firstLink = link(support_layout::firstLink, "A short subject", "http://one.example/");
    secondLink =
        link(support_layout::secondLink, "A subject so long that it can't stand on one line of its panel",
             "http://two.example/?a=b&c=d");
    addTo(content, support_layout::noticePanel, {heading, firstLink, secondLink});
  } else {
    description = makeTextView(support_layout::description, 11);
    description->setString(
        " You can easily manage the files in your iDevice without using iTunes.\n You can transfer contents "
        "via Finder.\n Also, you don't need to jailbreak.");
    addTo(content, support_layout::noticePanel, {heading, description});
  }
}
