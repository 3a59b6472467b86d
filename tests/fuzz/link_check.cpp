#include "tests/fuzz/link_check.h"

#include <algorithm>

#include <QUrl>

#include "support/address.h"
#include "tests/fuzz/requirement.h"

namespace fuzz {

void checkLink(const std::string& link) {
  if (!isLink(link)) return;
  require(isAddress(link), "a link is an address");
  require(std::ranges::all_of(link, [](char c) { return c > ' ' && c <= '~'; }), "a link is visible ASCII");
  const QUrl url(QString::fromStdString(link), QUrl::TolerantMode);
  require(!url.isValid() || url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https"),
          "a link leads to the web");
  require(!url.isValid() || !url.host().isEmpty(), "a link has a host");
}

}  // namespace fuzz
