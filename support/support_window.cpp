#include "app/globals.h"
#include "app/nimbatrayAppDelegate.h"
#include "notices/image_resize.h"
#include "platform/application.h"
#include "platform/button.h"
#include "platform/image.h"
#include "platform/log.h"
#include "platform/text_field.h"
#include "platform/text_view.h"
#include "platform/window.h"
#include "platform/workspace.h"
#include "support/address.h"
#include "support/server_content.h"
#include "support/support_controls.h"
#include "support/support_layout.h"
#include "usage/bundle_version.h"
#include "usage/console_text.h"
#include "usage/server_addresses.h"

using platform::LogPriority;
using platform::TextAlignment;
using platform::View;

namespace {

constexpr const char* copyright = "Copyright \u00a9 2026 Kesmoor. All rights reserved.";
constexpr const char* description =
    " You can easily manage the files in your iDevice without using iTunes.\n"
    " You can transfer contents via Finder.\n"
    " Also, you don't need to jailbreak.";

// Frozen, like all texts of the window: doc/compatibility.md.
std::string orNull(const std::optional<std::string>& text) {
  return text.value_or("(null)");
}

std::shared_ptr<View> panel(platform::Rect frame, std::initializer_list<std::shared_ptr<View>> views) {
  auto panel = std::make_shared<View>(frame);
  for (const auto& view : views) panel->addSubview(view);
  return panel;
}

}  // namespace

void nimbatrayAppDelegate::support() {
  platform::Application::sharedApplication().activateIgnoringOtherApps(true);
  notificateGA("clickaction", "support");
  refreshVersionAndBanners();
  if (bsupportWindow) return;
  const auto built = makeSupportWindow();
  if (built == nullptr) return;
  built->center();
  supportWindow = built.get();
  bsupportWindow = true;
  built->makeKeyAndOrderFront();
  platform::Application::sharedApplication().runModalForWindow(built);
  // Repeated after the modal run: after "Update" the window remains visible and modeless.
  built->makeKeyAndOrderFront();
}

void nimbatrayAppDelegate::refreshVersionAndBanners() {
  checkForUpdate();
  if (!isNetworkOnline) return;
  platform::consoleLog("recentversion : " + consoleText(orNull(recentVersion)) +
                       ", currentversion : " + orNull(currentVersion));
  static_cast<void>(getBannerList());
}

// The notice is fetched after its heading was created and the banner's picture after its view was created.
// Frozen: doc/compatibility.md.
std::shared_ptr<platform::Window> nimbatrayAppDelegate::makeSupportWindow() {
  auto built = platform::Window::make(support_layout::window, platform::WindowStyle::TitledClosable);
  if (built == nullptr) return nullptr;
  built->setTitle("Support Tovalin");
  const auto header = makeHeaderPanel();
  const auto faqButton = makeButtons();
  const auto notice = makeNoticePanel(*faqButton);
  const auto copyrightLabel = makeLabel(support_layout::copyrightLabel, copyright, TextAlignment::Center, 10);
  const auto buttons =
      panel(support_layout::buttonBand, {updateButton, faqButton, logButton, copyrightLabel});
  const auto banner = makeBannerBand();
  for (const auto& part : {header, notice, buttons, banner}) built->contentView().addSubview(part);
  built->setHidesOnDeactivate(true);
  built->setBackgroundColor(platform::colorFromHsb(0.0, 0.0, 0.9, 1.0));
  built->setWillClose([this] { supportWindowWillClose(); });
  return built;
}

std::shared_ptr<View> nimbatrayAppDelegate::makeHeaderPanel() {
  const auto name = makeLabel(support_layout::nameLabel, "Tovalin", TextAlignment::Center, 20);
  if (!currentVersion) platform::systemLog(LogPriority::Error, bundleVersionFailure);
  const auto version =
      makeLabel(support_layout::versionLabel, "Version " + orNull(currentVersion), TextAlignment::Center, 12);
  const auto icon = std::make_shared<platform::ImageView>(support_layout::icon);
  icon->setImage(imageResize(platform::imageNamed("icon.png").get(), support_layout::iconSide,
                             support_layout::iconSide));
  icon->setAccessibilityLabel("Tovalin");
  return panel(support_layout::headerPanel, {icon, name, version});
}

std::shared_ptr<platform::Button> nimbatrayAppDelegate::makeButtons() {
  updateButton = makePushButton(support_layout::updateButton, "Update", [this] { updateBtnClick(); });
  updateButton->setEnabled(bUpdateEnabled && isNetworkOnline);
  auto faqButton = makePushButton(support_layout::faqButton, "FAQ", [this] { faqBtnClick(); });
  logButton = makePushButton(support_layout::logButton, "Log file", [this] { logBtnClick(); });
  return faqButton;
}

std::shared_ptr<View> nimbatrayAppDelegate::makeNoticePanel(platform::Button& faqButton) {
  const auto heading =
      makeLabel(support_layout::noticeHeading, "Notice", TextAlignment::Left, platform::Font(14, true));
  isNetworkOnline = getServerNotice() != 0;
  if (!isNetworkOnline) {
    faqButton.setEnabled(false);
    const auto text = makeTextView(support_layout::description, 11);
    text->setString(description);
    return panel(support_layout::noticePanel, {heading, text});
  }
  const auto entries = *noticeEntries(*serverNotice);
  const auto first = makeTextView(support_layout::firstLink, 12);
  setHyperlinkWithTextView(*first, entries[0].link, shownSubject(entries[0].subject));
  const auto second = makeTextView(support_layout::secondLink, 12);
  setHyperlinkWithTextView(*second, entries[1].link, shownSubject(entries[1].subject));
  return panel(support_layout::noticePanel, {heading, first, second});
}

std::shared_ptr<View> nimbatrayAppDelegate::makeBannerBand() {
  bannerImgView = std::make_shared<tovalinNSImageView>(support_layout::banner);
  bannerImgView->setAccessibilityLabel("Banner");
  if (!isNetworkOnline) {
    bannerImg = platform::imageNamed("Tovalinbanner.png");
  } else if (bannerList != nullptr && getBannerImg() != 0) {
    bannerImgView->delegate = this;
    bannerImgView->setActsAsLink(true);
    bannerImgView->setAccessibilityLabel(bannerLabel(*bannerLink));
  } else {
    platform::consoleLog("bannerlist is NULL!");
  }
  bannerImgView->setImage(
      imageResize(bannerImg.get(), support_layout::banner.width, support_layout::banner.height));
  return panel(support_layout::bannerBand, {bannerImgView});
}

// A link that is not allowed (isLink) is shown but opens nothing.
void nimbatrayAppDelegate::setHyperlinkWithTextView(platform::TextView& view, const std::string& linkurl,
                                                    const std::string& linkString) {
  view.setSelectable(true);
  view.setAttributedString(linkString, {.pointingHandCursor = true,
                                        .foregroundColor = platform::blueColor(),
                                        .link = isLink(linkurl) ? linkurl : "",
                                        .underline = true});
  view.setTruncatesTail(true);
}

void nimbatrayAppDelegate::supportWindowWillClose() {
  // The result of printf(3) with the format "% supportWindow will be close.", where "% s" is replaced by the
  // method name. Support scripts search for this line. Frozen: doc/compatibility.md.
  platform::systemLog(LogPriority::Info,
                      "-[nimbatrayAppDelegate supportWindowWillClose:]upportWindow will be close.");
  platform::Application::sharedApplication().stopModal();
  bsupportWindow = false;
  supportWindow = nullptr;
  updateButton.reset();
  logButton.reset();
  bannerImgView.reset();
}

void nimbatrayAppDelegate::faqBtnClick() {
  platform::systemLog(LogPriority::Info, "-[nimbatrayAppDelegate faqBtnClick:] FAQ button click!");
  notificateGA("clickaction", "faqbtn");
  // Frozen: doc/compatibility.md.
  platform::Workspace::sharedWorkspace().openURL(productServer() + "/support/tovalin/");
}
