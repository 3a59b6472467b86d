#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <ostream>
#include <string_view>
#include <vector>

#include "tools/tvldump/decimal_digits.h"
#include "tools/tvldump/plain_text.h"

namespace tools {

// The write position in a line. Use it as a local variable, so that the compiler keeps the position in a
// register.
class Line {
 public:
  explicit Line(char* position) : position_(position) {}

  template <std::size_t size>
  void put(const char (&literal)[size]) {
    std::memcpy(position_, literal, size - 1);
    position_ += size - 1;
  }
  void put(std::string_view text) {
    std::memcpy(position_, text.data(), text.size());
    position_ += text.size();
  }
  void put(std::uint64_t number) { position_ = putDecimal(position_, number); }
  // `number` is from 0 to 9999; writes leading zeros.
  void putFourDigits(std::uint32_t number) { position_ = tools::putFourDigits(position_, number); }
  // `digit` is from 0 to 9.
  void putDigit(unsigned digit) { *position_++ = static_cast<char>('0' + digit); }

  // Writes a text if it can be part of a JSON string without escapes. Otherwise returns false and writes
  // nothing.
  [[nodiscard]] bool putIfPlain(std::string_view text) {
    const bool plain = copyIfPlain(position_, text);
    if (plain) position_ += text.size();
    return plain;
  }

  [[nodiscard]] char* position() const { return position_; }

 private:
  char* position_;
};

// Buffers lines and writes them to a stream in large blocks.
class LineWriter {
 public:
  // `stream` must outlive this object.
  explicit LineWriter(std::ostream& stream) : stream_(stream), text_(pieceSize) {}

  // Returns the next line, with space for `size` bytes. The line becomes part of the output when passed to
  // `end`.
  [[nodiscard]] Line begin(std::size_t size) {
    if (text_.size() - used_ < size) reserve(size);
    return Line(text_.data() + used_);
  }
  void end(const Line& line) { used_ = static_cast<std::size_t>(line.position() - text_.data()); }

  void flush() {
    stream_.write(text_.data(), static_cast<std::streamsize>(used_));
    used_ = 0;
  }

 private:
  static constexpr std::size_t pieceSize = std::size_t{1} << 17;

  void reserve(std::size_t size) {
    flush();
    if (text_.size() < size) text_.resize(size);
  }

  std::ostream& stream_;
  std::vector<char> text_;
  std::size_t used_ = 0;
};

}  // namespace tools
