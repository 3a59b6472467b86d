#pragma once

#include <algorithm>
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
  [[nodiscard]] bool nextIs(std::uint8_t byte) const {
    return !atEnd() && static_cast<std::uint8_t>(bytes_[offset_]) == byte;
  }
  [[nodiscard]] const std::optional<Damage>& damage() const { return damage_; }

  // Makes this place the damage, unless there is one already.
  void damaged(std::string_view reason) {
    if (!damage_) damage_ = Damage{offset_, reason};
  }

  // What was not taken yet; nothing behind damage.
  [[nodiscard]] std::string_view rest() const {
    return damage_ ? std::string_view() : std::string_view(bytes_.data() + offset_, bytes_.size() - offset_);
  }
  // Takes `size` bytes of `rest`.
  void skip(std::size_t size) { offset_ += size; }

  // The bytes from `start` to here.
  [[nodiscard]] std::string_view since(std::size_t start) const {
    return {bytes_.data() + start, offset_ - start};
  }

  // One byte from `lowest` to `highest`.
  std::uint8_t takeByte(std::uint8_t lowest, std::uint8_t highest, std::string_view reason) {
    if (atEnd()) damaged(endsTooEarly);
    if (damage_) return 0;
    const auto byte = static_cast<std::uint8_t>(bytes_[offset_]);
    if (byte < lowest || byte > highest) {
      damaged(reason);
      return 0;
    }
    ++offset_;
    return byte;
  }
  void takeFixed(std::string_view text, std::string_view reason);
  std::string_view takeText(std::size_t length) {
    if (damage_) return {};
    const std::size_t start = offset_;
    offset_ += std::min(length, bytes_.size() - start);
    if (offset_ - start == length) return since(start);
    damaged(endsTooEarly);
    return {};
  }

  // A byte that counts, at most `longest`, and as many bytes of text.
  std::string_view takeCounted(std::size_t longest, std::string_view reason) {
    return takeText(takeByte(0, static_cast<std::uint8_t>(longest), reason));
  }

  // As many decimal digits as `highest` has, of a number from `lowest` to `highest`.
  unsigned takeNumber(unsigned lowest, unsigned highest, std::string_view reason);

  // "2024-03-07", a day of the calendar.
  std::string_view takeDate();

  // " 09:05:00" behind a date; a leap second is one.
  void takeTimeOfDay();

 private:
  static constexpr std::string_view endsTooEarly = "the file ends too early";

  [[nodiscard]] bool takeLastDate();
  [[nodiscard]] bool takeUsualTimeOfDay();

  std::span<const char> bytes_;
  std::size_t offset_ = 0;
  std::string_view lastDate_;
  std::optional<Damage> damage_;
};

}  // namespace tools
