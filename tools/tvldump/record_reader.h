#pragma once

#include <optional>
#include <span>

#include "tools/tvldump/record_cursor.h"
#include "tools/tvldump/record_item.h"

namespace tools {

// Reads a usage record file item by item; its layout is in doc/usage_record_format.md. Every byte of it may
// be anything. The items point into the bytes, which must outlive them; nothing is copied or allocated. One
// thread at a time.
class RecordReader {
 public:
  explicit RecordReader(std::span<const char> bytes) : cursor_(bytes) {}

  // The next item: the four of the header in their order, then the records. Nothing at the end of a whole
  // file, and nothing any more once there is damage.
  [[nodiscard]] std::optional<Item> next();

  // Where the sense ends, once `next` has come upon it.
  [[nodiscard]] const std::optional<Damage>& damage() const { return cursor_.damage(); }

 private:
  using Content = decltype(Item::content);
  enum class Expected { Day, Identifier, OperatingSystem, Version, Record };

  void takeContent(Content& content);
  Day takeDay();
  Identifier takeIdentifier();
  OperatingSystem takeOperatingSystem();
  Version takeVersion();
  void takeRecord(Content& content);
  void takeStart(Start& start);
  void takeDeviceEvent(unsigned dataCommand, DeviceEvent& event);
  void takeTransfer(unsigned kind, Transfer& transfer);
  std::string_view takeTime();

  RecordCursor cursor_;
  Expected expected_ = Expected::Day;
};

}  // namespace tools
