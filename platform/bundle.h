#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/property_list.h"

namespace platform {

// An application bundle: the folder NAME.app, which holds the program, its resources and its Info.plist. A
// value type; usable on any thread.
class Bundle {
 public:
  // Returns the bundle of the running program, derived from the path of the executable,
  // NAME.app/Contents/MacOS/PROGRAM. Returns nullopt if the executable is not in such a place.
  [[nodiscard]] static std::optional<Bundle> mainBundle();

  // Returns the Info.plist of the main bundle, read once at the first call, so that an update or removal of
  // the bundle does not affect the running program. Returns nullopt if it cannot be read or is not a
  // dictionary.
  [[nodiscard]] static const std::optional<PropertyList>& mainInfoDictionary();

  // Returns the text `key` of that dictionary; nullopt if there is none.
  [[nodiscard]] static std::optional<std::string> mainBundleText(std::string_view key);

  explicit Bundle(std::string path) : path_(std::move(path)) {}

  // An absolute path without a trailing slash.
  [[nodiscard]] const std::string& bundlePath() const { return path_; }

  // Returns the path of the file `name` in Contents/Resources, whether or not it exists.
  [[nodiscard]] std::string pathForResource(std::string_view name) const;

  // Reads Contents/Info.plist at each call. Returns nullopt if it cannot be read or is not a dictionary.
  [[nodiscard]] std::optional<PropertyList> infoDictionary() const;

 private:
  std::string path_;
};

}  // namespace platform
