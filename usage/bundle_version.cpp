#include "usage/bundle_version.h"

#include <utility>

#include "platform/bundle.h"

std::int32_t getBundleVersion(std::optional<std::string>& version) {
  auto text = platform::Bundle::mainBundleText("CFBundleVersion");
  if (!text) return -1;
  version = std::move(text);
  return 0;
}
