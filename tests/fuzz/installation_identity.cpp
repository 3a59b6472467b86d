// Input: the file of the installation's identifier.

#include "usage/installation_identity.h"

#include <array>
#include <string>
#include <string_view>

#include "tests/fuzz/application_folder.h"
#include "tests/fuzz/requirement.h"
#include "tests/fuzz/target.h"

namespace {

using fuzz::require;

constexpr std::size_t kRecordsBufferSize = 50;

bool isIdentifier(std::string_view text) {
  if (text.size() != uuidTextLength) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool isJoint = i == 8 || i == 13 || i == 18 || i == 23;
    const auto allowed = isJoint ? std::string_view("-") : std::string_view("0123456789ABCDEF");
    if (allowed.find(text[i]) == std::string_view::npos) return false;
  }
  return true;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const fuzz::ApplicationFolder folder;
  constexpr const char* name = "TovalinUUID.txt";
  const std::string bytes(data, data + size);
  folder.write(name, bytes);
  std::array<char, kRecordsBufferSize> buffer{};
  GetTovalinUUID(buffer);
  const std::string identifier(buffer.data(), uuidTextLength);
  require(size != uuidTextLength || identifier == bytes, "any 36 bytes are kept");
  require(size == uuidTextLength || isIdentifier(identifier), "anything else makes a new identifier");
  require(folder.read(name) == identifier, "the file holds the identifier");
  for (std::size_t i = uuidTextLength; i < buffer.size(); ++i)
    require(buffer.at(i) == '\0', "bytes after the identifier stay zero");
  return 0;
}
