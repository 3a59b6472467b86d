#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "usage/little_endian.h"
#include "usage/record_format.h"

namespace tools {

// Returns a "-ncdat" message of `length` bytes, which must include the data command. All other bytes are 0.
[[nodiscard]] inline std::string collectMessage(std::size_t length, std::uint32_t dataCommand) {
  std::string message = "-ncdat";
  message.resize(length, '\0');
  putLittleEndian(message, record_format::message::dataCommandOffset, dataCommand, 4);
  return message;
}

// Returns the size of a message with `count` transfers.
[[nodiscard]] inline std::size_t transferMessageSize(std::size_t count) {
  return record_format::message::entriesOffset + count * record_format::message::entrySize;
}

// Writes the transfer `index` into a message that is large enough. The name must fit its field.
inline void putTransfer(std::string& message, std::size_t index, std::uint32_t kind, std::uint64_t size,
                        std::string_view name) {
  namespace layout = record_format::message;
  const std::size_t entry = transferMessageSize(index);
  putLittleEndian(message, entry + layout::entryKindOffset, kind, 4);
  putLittleEndian(message, entry + layout::entrySizeOffset, size, record_format::sizeFieldWidth);
  name.copy(message.data() + entry + layout::entryNameOffset, name.size());
}

}  // namespace tools
