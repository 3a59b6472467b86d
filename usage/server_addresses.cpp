#include "usage/server_addresses.h"

#include <string_view>

#include "platform/bundle.h"

namespace {

std::string withoutTrailingSlashes(const std::string& origin) {
  return origin.substr(0, origin.find_last_not_of('/') + 1);
}

std::string addressFor(std::string_view key, const char* builtIn) {
  const std::string address = withoutTrailingSlashes(platform::Bundle::mainBundleText(key).value_or(""));
  return address.empty() ? withoutTrailingSlashes(builtIn) : address;
}

}  // namespace

std::string productServer() {
  return addressFor("TovalinProductServer", TOVALIN_PRODUCT_SERVER);
}

std::string testUploadServer() {
  return addressFor("TovalinTestUploadServer", TOVALIN_TEST_UPLOAD_SERVER);
}
