#include "platform/bundle.h"

#include <filesystem>

#include "platform/executable_folder.h"

namespace platform {
namespace {

std::optional<PropertyList> readMainInfoDictionary() {
  const auto bundle = Bundle::mainBundle();
  return bundle ? bundle->infoDictionary() : std::nullopt;
}

}  // namespace

std::optional<Bundle> Bundle::mainBundle() {
  const std::filesystem::path folder = executableFolder();
  if (folder.filename() != "MacOS" || folder.parent_path().filename() != "Contents") return std::nullopt;
  return Bundle(folder.parent_path().parent_path().string());
}

// Never destroyed, because other threads may read it while the process exits.
const std::optional<PropertyList>& Bundle::mainInfoDictionary() {
  static const auto& dictionary = *new std::optional(readMainInfoDictionary());
  return dictionary;
}

std::optional<std::string> Bundle::mainBundleText(std::string_view key) {
  const auto& information = mainInfoDictionary();
  const std::string* text = information ? information->textAt(key) : nullptr;
  return text == nullptr ? std::nullopt : std::optional(*text);
}

std::string Bundle::pathForResource(std::string_view name) const {
  return path_ + "/Contents/Resources/" + std::string(name);
}

std::optional<PropertyList> Bundle::infoDictionary() const {
  auto list = readPropertyListFile(path_ + "/Contents/Info.plist");
  auto* dictionary = std::get_if<PropertyList>(&list);
  if (dictionary == nullptr || dictionary->as<PropertyList::Dictionary>() == nullptr) return std::nullopt;
  return std::move(*dictionary);
}

}  // namespace platform
