// Input: the input of the web view helper. It must load exactly the web addresses among the lines, however
// the bytes are split into reads.

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/helpers/web_view/address_lines.h"
#include "tests/fuzz/requirement.h"
#include "tests/fuzz/target.h"

namespace {

using fuzz::require;
using helpers::AddressLines;

char lowerCase(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// Second implementation of the line rules.
bool isExpected(std::string_view line) {
  std::string start(line.substr(0, std::string_view("https://").size()));
  std::ranges::transform(start, start.begin(), lowerCase);
  const std::string_view scheme = start == "https://" ? "https://" : "http://";
  return start.starts_with(scheme) && line.size() > scheme.size() &&
         line.size() <= AddressLines::maxLineLength &&
         std::ranges::all_of(line, [](char c) { return c > ' ' && c < '\x7f'; });
}

// Text after the last newline is not a line.
std::vector<std::string> expectedAddresses(std::string_view bytes) {
  std::vector<std::string> addresses;
  for (auto end = bytes.find('\n'); end != std::string_view::npos; end = bytes.find('\n')) {
    if (isExpected(bytes.substr(0, end))) addresses.emplace_back(bytes.substr(0, end));
    bytes.remove_prefix(end + 1);
  }
  return addresses;
}

std::vector<std::string> takenInPieces(std::string_view bytes, std::size_t size) {
  AddressLines lines;
  std::vector<std::string> addresses;
  for (; !bytes.empty(); bytes.remove_prefix(std::min(size, bytes.size()))) {
    for (std::string& address : lines.take(bytes.substr(0, size))) addresses.push_back(std::move(address));
  }
  return addresses;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const auto addresses = AddressLines().take(bytes);
  require(addresses == expectedAddresses(bytes), "exactly the web addresses among the lines are loaded");
  for (const std::size_t piece : {5U, 61U, 4096U}) {
    require(takenInPieces(bytes, piece) == addresses, "the result does not depend on the pieces");
  }
  for (const std::string& address : addresses) {
    require(helpers::isAllowedAddress(address.c_str()), "navigation to a loaded address is allowed");
  }
  return 0;
}
