#pragma once

#include <optional>
#include <span>

#include "tools/tvldump/record_cursor.h"
#include "tools/tvldump/record_item.h"
#include "usage/little_endian.h"
#include "usage/record_format.h"

namespace tools {

// Reads a usage record file (doc/usage_record_format.md) item by item. The bytes are untrusted. The items
// point into the bytes, which must outlive them; nothing is copied or allocated. For use by one thread at a
// time.
class RecordReader {
 public:
  explicit RecordReader(std::span<const char> bytes) : cursor_(bytes) {}

  // Returns the next item: the four of the header in order, then the records. Returns nullopt at the end of a
  // valid file and after damage.
  [[nodiscard]] std::optional<Item> next();

  // The same, but stores the item in `item`, whose content is unspecified at the end. Returns false where
  // `next` returns nullopt. Faster for large files: copying an item right after it was written stalls the
  // processor for longer than reading it takes.
  [[nodiscard]] bool read(Item& item) {
    item.offset = cursor_.offset();
    return (expected_ == Expected::Record && takeUsualTransfer(item.content)) || takeItem(item.content);
  }

  // Returns the damage after `next` has reached it.
  [[nodiscard]] const std::optional<Damage>& damage() const { return cursor_.damage(); }

 private:
  using Content = decltype(Item::content);
  enum class Expected { Day, Identifier, OperatingSystem, Version, Record };

  [[nodiscard]] bool takeItem(Content& content);
  void takeContent(Content& content);
  Day takeDay();
  Identifier takeIdentifier();
  OperatingSystem takeOperatingSystem();
  Version takeVersion();
  [[nodiscard]] bool takeUsualTransfer(Content& content);
  void takeRecord(Content& content);
  void takeStart(Start& start);
  void takeDeviceEvent(unsigned dataCommand, DeviceEvent& event);
  void takeTransfer(unsigned kind, Transfer& transfer);
  std::string_view takeTime();

  RecordCursor cursor_;
  Expected expected_ = Expected::Day;
};

// Fast path for transfers, which nearly all records are. Takes a valid transfer; leaves any other record to
// takeItem, which determines the offset of the damage.
inline bool RecordReader::takeUsualTransfer(Content& content) {
  using namespace record_format;
  constexpr std::size_t widthOffset = 1, sizeOffset = 2;
  constexpr std::size_t lengthOffset = sizeOffset + sizeFieldWidth, nameOffset = lengthOffset + 1;
  const std::string_view rest = cursor_.rest();
  if (rest.size() < maxTransferLength) return false;
  const bool isKind1 = rest[0] == static_cast<char>(Code::TransferKind1);
  const bool isKind2 = rest[0] == static_cast<char>(Code::TransferKind2);
  const auto length = static_cast<std::uint8_t>(rest[lengthOffset]);
  if (!isKind1 && !isKind2) return false;
  if (rest[widthOffset] != sizeFieldWidth || length > maxTransferNameLength) return false;
  auto& transfer = content.emplace<Transfer>();
  transfer.kind = isKind1 ? 1 : 2;
  transfer.size = littleEndian<std::uint64_t>(rest.substr(sizeOffset, record_format::sizeFieldWidth));
  transfer.name = {rest.data() + nameOffset, length};
  cursor_.skip(nameOffset + length);
  return true;
}

}  // namespace tools
