#include "usage/property_file.h"

#include <string>

#include "app/globals.h"
#include "platform/log.h"
#include "platform/property_list.h"

namespace {

using platform::PropertyList;
using platform::PropertyListError;

// Support searches logs for these step names. Frozen: doc/compatibility.md.
const char* messageFor(PropertyListError error) {
  switch (error) {
    case PropertyListError::BadPath:
      return "CFURLCreateWithFileSystemPath failed";
    case PropertyListError::NoStream:
      return "CFReadStreamCreateWithFile failed";
    case PropertyListError::OpenFailed:
      return "CFReadStreamOpen error";
    case PropertyListError::Unreadable:
      break;
  }
  return "CFPropertyListCreateWithStream error";
}

std::int32_t fail(PropertyListError error) {
  platform::systemLog(platform::LogPriority::Error, std::string("GetProperty ") + messageFor(error));
  return -1;
}

}  // namespace

std::int32_t GetProperty(const char* key, std::uint32_t& value) {
  // The misspelling "Porperty" is frozen: doc/compatibility.md.
  const auto file =
      platform::readPropertyListFile(std::string(gBundlePath) + "/Contents/TovalinPorperty.plist");
  if (const auto* error = std::get_if<PropertyListError>(&file)) return fail(*error);
  const auto& root = std::get<PropertyList>(file);
  if (root.as<PropertyList::Dictionary>() == nullptr) return fail(PropertyListError::Unreadable);
  const PropertyList* entry = root.find(key);
  if (const bool* set = entry == nullptr ? nullptr : entry->as<bool>()) value = *set ? 1 : 0;
  return 0;
}
