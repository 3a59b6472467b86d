#include "tools/mainapp/collect_data.h"

#include <cstdint>
#include <sstream>

#include "usage/record_format.h"

namespace tools {
namespace {

namespace layout = record_format::message;

void put(std::string& message, std::size_t offset, std::uint64_t value, std::size_t bytes) {
  for (std::size_t i = 0; i < bytes; ++i) message[offset + i] = static_cast<char>(value >> 8 * i);
}

std::string messageOfLength(std::size_t length, std::uint32_t dataCommand) {
  std::string message = "-ncdat";
  message.resize(length, '\0');
  put(message, layout::dataCommandOffset, dataCommand, 4);
  return message;
}

// The rest of the line behind one blank.
std::string restOf(std::istringstream& words) {
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
  const std::string name = restOf(stream);
  if (name.size() > record_format::longestDeviceName) return std::nullopt;
  return messageOfLength(layout::deviceNameOffset, command) + name + '\0';
}

std::optional<std::string> transferMessage(const std::string& words) {
  std::istringstream stream(words);
  std::int32_t kind = 0;
  std::uint64_t size = 0;
  if (!(stream >> kind >> size)) return std::nullopt;
  const std::string name = restOf(stream);
  if (name.size() > record_format::longestTransferName) return std::nullopt;
  std::string message = messageOfLength(layout::entriesOffset + layout::entrySize, layout::transfers);
  put(message, layout::entryCountOffset, 1, 4);
  const std::size_t entry = layout::entriesOffset;
  put(message, entry + layout::entryKindOffset, static_cast<std::uint32_t>(kind), 4);
  put(message, entry + layout::entrySizeOffset, size, 8);
  name.copy(message.data() + entry + layout::entryNameOffset, name.size());
  return message;
}

}  // namespace tools
