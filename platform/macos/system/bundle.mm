#include "platform/bundle.h"

#import <Cocoa/Cocoa.h>

#include <filesystem>
#include <system_error>

#include "platform/macos/foundation/autorelease_pool.h"
#include "platform/macos/foundation/text_impl.h"

namespace platform {
namespace {

// Returns the executable's folder with links resolved, or an empty path on error. Computed once, because the
// bundle may move while the program runs.
const std::filesystem::path& executableFolder() {
  static const auto& folder = *new auto([] {
    const AutoreleasePool pool;
    const std::string path = utf8Of([[NSBundle mainBundle] executablePath]);
    std::error_code error;
    const auto resolved = std::filesystem::canonical(path, error);
    return error ? std::filesystem::path() : resolved.parent_path();
  }());
  return folder;
}

std::optional<PropertyList> readMainInfoDictionary() {
  const auto bundle = Bundle::mainBundle();
  return bundle ? bundle->infoDictionary() : std::nullopt;
}

}  // namespace

std::optional<Bundle> Bundle::mainBundle() {
  const auto& folder = executableFolder();
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
