#include <stdlib.h>

#include <span>

#include "app/nimbatrayAppDelegate.h"
#include "platform/image.h"
#include "platform/log.h"
#include "platform/property_list.h"
#include "platform/workspace.h"
#include "support/address.h"
#include "support/server_content.h"
#include "support/server_fetch.h"

namespace {

// Returns nullptr if the body is not a property list.
std::shared_ptr<const platform::PropertyList> parsed(const std::string& body) {
  auto list = platform::parsePropertyList(std::as_bytes(std::span(body)));
  return list ? std::make_shared<const platform::PropertyList>(*std::move(list)) : nullptr;
}

}  // namespace

// An invalid body discards the previous notice; a failed request keeps it.
int nimbatrayAppDelegate::getServerNotice() {
  // Frozen: doc/compatibility.md.
  const auto body = fetchFromServer("/product/nimba/binary/tovalinnotice.xml");
  if (!body) return 0;
  serverNotice = parsed(*body);
  return serverNotice != nullptr && noticeEntries(*serverNotice) ? 1 : 0;
}

int nimbatrayAppDelegate::getBannerList() {
  // Frozen: doc/compatibility.md.
  const auto body = fetchFromServer("/product/nimba/banner/tovalinbanner.xml");
  if (!body) return 0;
  bannerList = parsed(*body);
  return bannerList != nullptr ? 1 : 0;
}

// The link is replaced even if the banner's picture cannot be loaded.
int nimbatrayAppDelegate::getBannerImg() {
  const auto banner = chosenBanner(*bannerList, ::arc4random());
  if (!banner) return 0;
  bannerLink = banner->link;
  const auto path = bannerPath(*banner);
  if (!path) return 0;
  const auto body = fetchFromServer(*path);
  if (!body) return 0;
  bannerImg = platform::imageWithData(*body);
  return bannerImg != nullptr ? 1 : 0;
}

void nimbatrayAppDelegate::myImageView(tovalinNSImageView& view, const platform::MouseEvent& /*mouseUp*/) {
  if (&view != bannerImgView.get()) return;
  platform::consoleLog("bannerImgView clicked");
  notificateGA("clickaction", "banner");
  if (bannerLink && isLink(*bannerLink)) platform::Workspace::sharedWorkspace().openURL(*bannerLink);
}
