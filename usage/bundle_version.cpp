#include "usage/bundle_version.h"

#include "platform/bundle.h"

std::int32_t getBundleVersion(std::optional<std::string>& version) {
  const auto bundle = platform::Bundle::mainBundle();
  const auto information = bundle ? bundle->infoDictionary() : std::nullopt;
  const auto* entry = information ? information->find("CFBundleVersion") : nullptr;
  const auto* text = entry == nullptr ? nullptr : entry->as<std::string>();
  if (text == nullptr) return -1;
  version = *text;
  return 0;
}
