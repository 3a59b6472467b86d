#include "platform/executable_folder.h"

#import <Cocoa/Cocoa.h>

#include <string>
#include <system_error>

#include "platform/macos/foundation/autorelease_pool.h"
#include "platform/macos/foundation/text_impl.h"

namespace platform {
namespace {

std::filesystem::path resolvedFolder() {
  const AutoreleasePool pool;
  const std::string program = utf8Of([[NSBundle mainBundle] executablePath]);
  std::error_code error;
  const auto resolved = std::filesystem::canonical(program, error);
  return error ? std::filesystem::path() : resolved.parent_path();
}

}  // namespace

// Computed once, because the bundle may move while the program runs.
std::filesystem::path executableFolder() {
  static const auto& folder = *new auto(resolvedFolder());
  return folder;
}

}  // namespace platform
