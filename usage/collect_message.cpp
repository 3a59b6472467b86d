#include "usage/collect_message.h"

#include <algorithm>
#include <cstring>

#include "usage/little_endian.h"

namespace {

namespace layout = record_format::message;

std::uint32_t integerAt(std::span<const char> bytes, std::size_t offset) {
  return littleEndian<std::uint32_t>({bytes.data() + offset, sizeof(std::uint32_t)});
}

std::string_view nameAt(std::span<const char> bytes, std::size_t offset, std::size_t maxLength) {
  const auto field = bytes.subspan(offset, maxLength);
  return {field.data(), ::strnlen(field.data(), field.size())};
}

TransferEntry entryAt(CollectMessage message, std::size_t index) {
  const auto bytes = message.subspan(layout::entriesOffset + index * layout::entrySize, layout::entrySize);
  return {static_cast<std::int32_t>(integerAt(bytes, layout::entryKindOffset)),
          {bytes.data() + layout::entrySizeOffset, record_format::sizeFieldWidth},
          nameAt(bytes, layout::entryNameOffset, record_format::maxTransferNameLength)};
}

}  // namespace

std::uint32_t dataCommandOf(CollectMessage message) {
  return integerAt(message, layout::dataCommandOffset);
}

std::string_view deviceNameOf(CollectMessage message) {
  return nameAt(message, layout::deviceNameOffset, record_format::maxDeviceNameLength);
}

std::uint32_t entryCountOf(CollectMessage message) {
  return integerAt(message, layout::entryCountOffset);
}

std::vector<TransferEntry> transferEntriesOf(CollectMessage message) {
  std::vector<TransferEntry> entries;
  const std::uint32_t count = std::min(entryCountOf(message), layout::maxEntries);
  entries.reserve(count);
  for (std::uint32_t i = 0; i < count; ++i) entries.push_back(entryAt(message, i));
  return entries;
}
