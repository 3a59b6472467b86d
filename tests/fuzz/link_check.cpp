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
  require(link.front() != '-' && link.front() != '/', "a link is neither an option nor a path");
  const QUrl url(QString::fromStdString(link), QUrl::TolerantMode);
  require(!url.isValid() || !url.scheme().isEmpty(), "a link has a scheme");
  require(!url.isLocalFile() && url.scheme() != QLatin1String("file"), "a link leads to no file");
}

}  // namespace fuzz
