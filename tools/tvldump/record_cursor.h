#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "tools/tvldump/record_item.h"

namespace tools {

// A read position in a usage record file. Each `take` function returns a field and moves past it. The first
// byte that is not valid in the requested field is recorded as the damage. After that the position does not
// change and all fields are empty, so that callers can take several fields before they check for damage.
// Views point into the file's bytes; nothing is allocated.
class RecordCursor {
 public:
  explicit RecordCursor(std::span<const char> bytes) : bytes_(bytes) {}

  [[nodiscard]] std::size_t offset() const { return offset_; }
  [[nodiscard]] bool atEnd() const { return offset_ == bytes_.size(); }
  [[nodiscard]] bool nextIs(std::uint8_t byte) const {
    return !atEnd() && static_cast<std::uint8_t>(bytes_[offset_]) == byte;
  }
  [[nodiscard]] const std::optional<Damage>& damage() const { return damage_; }

  // Records damage at the current position, unless there is damage already.
  void damaged(std::string_view reason) {
    if (!damage_) damage_ = Damage{offset_, reason};
  }

  // Returns the bytes not taken yet; empty after damage.
  [[nodiscard]] std::string_view rest() const {
    return damage_ ? std::string_view() : std::string_view(bytes_.data() + offset_, bytes_.size() - offset_);
  }
  // Skips `size` bytes, which must be in `rest`.
  void skip(std::size_t size) { offset_ += size; }

  // Returns the bytes from `start` to the current position.
  [[nodiscard]] std::string_view since(std::size_t start) const {
    return {bytes_.data() + start, offset_ - start};
  }

  // Takes one byte from `minimum` to `maximum`.
  std::uint8_t takeByte(std::uint8_t minimum, std::uint8_t maximum, std::string_view reason) {
    if (atEnd()) damaged(endsTooEarly);
    if (damage_) return 0;
    const auto byte = static_cast<std::uint8_t>(bytes_[offset_]);
    if (byte < minimum || byte > maximum) {
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

  // Takes a length byte, at most `maxLength`, and that many bytes of text.
  std::string_view takeCounted(std::size_t maxLength, std::string_view reason) {
    return takeText(takeByte(0, static_cast<std::uint8_t>(maxLength), reason));
  }

  // Takes a number from `minimum` to `maximum`, with as many decimal digits as `maximum`.
  unsigned takeNumber(unsigned minimum, unsigned maximum, std::string_view reason);

  // Takes a calendar date such as "2024-03-07".
  std::string_view takeDate();

  // Takes a time such as " 09:05:00" after a date. Accepts leap seconds.
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
