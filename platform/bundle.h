#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/property_list.h"

namespace platform {

// A program's bundle: the folder NAME.app that holds it with its resources and its Info.plist. A value type,
// any thread.
class Bundle {
 public:
  // The bundle of the running program, found from its executable's own path NAME.app/Contents/MacOS/PROGRAM.
  // Nothing when the executable doesn't stand in such a place.
  [[nodiscard]] static std::optional<Bundle> mainBundle();

  // That bundle's Info.plist, read once, at the first call: an update of the bundle in place or its removal
  // changes nothing for the running program. Nullopt if it can't be read or is no dictionary.
  [[nodiscard]] static const std::optional<PropertyList>& mainInfoDictionary();

  // The text `key` of that dictionary; nullopt if there is none.
  [[nodiscard]] static std::optional<std::string> mainBundleText(std::string_view key);

  explicit Bundle(std::string path) : path_(std::move(path)) {}

  // Absolute, without a slash at its end.
  [[nodiscard]] const std::string& bundlePath() const { return path_; }

  // The file `name` in Contents/Resources, whether or not it exists.
  [[nodiscard]] std::string pathForResource(std::string_view name) const;

  // Contents/Info.plist, read anew; nothing when it can't be read or is no dictionary.
  [[nodiscard]] std::optional<PropertyList> infoDictionary() const;

 private:
  std::string path_;
};

}  // namespace platform
