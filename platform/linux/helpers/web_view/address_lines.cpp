#include "platform/linux/helpers/web_view/address_lines.h"

#include <strings.h>

#include <algorithm>

namespace helpers {
namespace {

bool hasScheme(std::string_view text, std::string_view scheme) {
  return text.size() > scheme.size() && ::strncasecmp(text.data(), scheme.data(), scheme.size()) == 0;
}

}  // namespace

bool isWebAddress(std::string_view text) {
  const auto isVisible = [](char character) { return character > ' ' && character <= '~'; };
  return (hasScheme(text, "http://") || hasScheme(text, "https://")) && std::ranges::all_of(text, isVisible);
}

bool isAllowedAddress(const char* address) {
  if (address == nullptr) return false;
  const std::string_view text = address;
  return isWebAddress(text) || text == "about:blank" || text == "about:srcdoc";
}

std::vector<std::string> AddressLines::take(std::string_view bytes) {
  std::vector<std::string> addresses;
  for (std::size_t end = bytes.find('\n'); end != std::string_view::npos; end = bytes.find('\n')) {
    append(bytes.substr(0, end));
    bytes.remove_prefix(end + 1);
    if (!tooLong_ && isWebAddress(line_)) addresses.push_back(line_);
    line_.clear();
    tooLong_ = false;
  }
  append(bytes);
  return addresses;
}

void AddressLines::append(std::string_view part) {
  tooLong_ = tooLong_ || part.size() > maxLineLength - line_.size();
  if (tooLong_) {
    line_.clear();
  } else {
    line_ += part;
  }
}

}  // namespace helpers
