#include "tools/mainapp/collect_data.h"

#include <cstdint>
#include <sstream>

#include "tools/mainapp/collect_message_bytes.h"

namespace tools {
namespace {

namespace layout = record_format::message;

// Returns the rest of the line after one space.
std::string remainderOf(std::istringstream& words) {
  std::string rest;
  words.get();
  std::getline(words, rest);
  return rest;
}

}  // namespace

std::optional<std::string> deviceEventMessage(const std::string& words) {
  std::istringstream stream(words);
  std::uint32_t command = 0;
  if (!(stream >> command)) return std::nullopt;
  if (command != layout::deviceEvent3 && command != layout::deviceEvent4) return std::nullopt;
  const std::string name = remainderOf(stream);
  if (name.size() > record_format::maxDeviceNameLength) return std::nullopt;
  return collectMessage(layout::deviceNameOffset, command) + name + '\0';
}

std::optional<std::string> transferMessage(const std::string& words) {
  std::istringstream stream(words);
  std::int32_t kind = 0;
  std::uint64_t size = 0;
  if (!(stream >> kind >> size)) return std::nullopt;
  const std::string name = remainderOf(stream);
  if (name.size() > record_format::maxTransferNameLength) return std::nullopt;
  std::string message = collectMessage(transferMessageSize(1), layout::transfers);
  putLittleEndian(message, layout::entryCountOffset, 1, 4);
  putTransfer(message, 0, static_cast<std::uint32_t>(kind), size, name);
  return message;
}

}  // namespace tools
