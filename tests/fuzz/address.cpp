// Input: an address that the server names, and a text that is inserted into an address.

#include "support/address.h"

#include <cstddef>
#include <string>

#include <QByteArray>

#include "app/beacon.h"
#include "tests/fuzz/link_check.h"
#include "tests/fuzz/requirement.h"
#include "tests/fuzz/target.h"

namespace {

using fuzz::require;

bool isHexDigit(char c) {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

// Second implementation of isAddress(), by the visible ASCII characters that an address may not contain.
bool isAddressBySecondWay(const std::string& text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] <= ' ' || text[i] > '~') return false;
    if (std::string_view("\"<>\\^`{|}").find(text[i]) != std::string_view::npos) return false;
    if (text[i] != '%') continue;
    if (i + 2 >= text.size() || !isHexDigit(text[i + 1]) || !isHexDigit(text[i + 2])) return false;
  }
  return !text.empty();
}

void checkEscapes(const std::string& text) {
  const std::string escaped = escapedForAddress(text);
  require(text.empty() || isAddress(escaped), "the escaped text is an address");
  const QByteArray unescaped = QByteArray::fromPercentEncoding(QByteArray::fromStdString(escaped));
  require(unescaped.toStdString() == text, "unescaping yields the text");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(data, data + size);
  require(isAddress(text) == isAddressBySecondWay(text), "isAddress and the second implementation agree");
  fuzz::checkLink(text);
  checkEscapes(text);
  require(isLink(beaconAddress("https://www.tovalin.example", text, text)), "a beacon is a link");
  require(isAddress(beaconAddress(text, "c", "v")), "a beacon's page on any server is an address");
  return 0;
}
