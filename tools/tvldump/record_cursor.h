#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "tools/tvldump/record_item.h"

namespace tools {

// A place in the bytes of a usage record file that moves behind each field taken. The first byte that can't
// belong to the field asked for is the damage; from then on the place stays and every field comes out empty,
// so that who takes several fields looks for damage once. Views point into the bytes; nothing is allocated.
class RecordCursor {
 public:
  explicit RecordCursor(std::span<const char> bytes) : bytes_(bytes) {}

  [[nodiscard]] std::size_t offset() const { return offset_; }
  [[nodiscard]] bool atEnd() const { return offset_ == bytes_.size(); }
  [[nodiscard]] bool nextIs(std::uint8_t byte) const;
  [[nodiscard]] const std::optional<Damage>& damage() const { return damage_; }

  // Makes this place the damage, unless there is one already.
  void damaged(std::string_view reason);

  // The bytes from `start` to here.
  [[nodiscard]] std::string_view since(std::size_t start) const;

  // One byte from `lowest` to `highest`.
  std::uint8_t takeByte(std::uint8_t lowest, std::uint8_t highest, std::string_view reason);
  void takeFixed(std::string_view text, std::string_view reason);
  std::string_view takeText(std::size_t length);

  // A byte that counts, at most `longest`, and as many bytes of text.
  std::string_view takeCounted(std::size_t longest, std::string_view reason);

  // As many decimal digits as `highest` has, of a number from `lowest` to `highest`.
  unsigned takeNumber(unsigned lowest, unsigned highest, std::string_view reason);

  // "2024-03-07", a day of the calendar.
  std::string_view takeDate();

  // " 09:05:00" behind a date; a leap second is one.
  void takeTimeOfDay();

 private:
  std::span<const char> bytes_;
  std::size_t offset_ = 0;
  std::optional<Damage> damage_;
};

}  // namespace tools
