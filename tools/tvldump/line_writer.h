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

// Where the next byte of a line goes. A local variable of whoever writes the line, so that the place stays in
// a register: behind a reference each byte put would have it read and written anew.
class Line {
 public:
  explicit Line(char* place) : place_(place) {}

  template <std::size_t size>
  void put(const char (&literal)[size]) {
    std::memcpy(place_, literal, size - 1);
    place_ += size - 1;
  }
  void put(std::string_view text) {
    std::memcpy(place_, text.data(), text.size());
    place_ += text.size();
  }
  void put(std::uint64_t number) { place_ = putDecimal(place_, number); }
  // From 0 to 9999, with leading zeros.
  void putFourDigits(std::uint32_t number) { place_ = tools::putFourDigits(place_, number); }
  // From 0 to 9.
  void putDigit(unsigned digit) { *place_++ = static_cast<char>('0' + digit); }

  // Puts a text if each of its bytes can stand in a JSON string as it is. Returns false, with nothing
  // put, if one can't.
  [[nodiscard]] bool putIfPlain(std::string_view text) {
    const bool plain = copyIfPlain(place_, text);
    if (plain) place_ += text.size();
    return plain;
  }

  [[nodiscard]] char* place() const { return place_; }

 private:
  char* place_;
};

// Gathers lines for a stream, which gets them in large pieces.
class LineWriter {
 public:
  // `stream` must outlive this object.
  explicit LineWriter(std::ostream& stream) : stream_(stream), text_(pieceSize) {}

  // The next line, with space for `size` bytes; it counts once it has been handed to `end`.
  [[nodiscard]] Line begin(std::size_t size) {
    if (text_.size() - used_ < size) makeRoom(size);
    return Line(text_.data() + used_);
  }
  void end(const Line& line) { used_ = static_cast<std::size_t>(line.place() - text_.data()); }

  void flush() {
    stream_.write(text_.data(), static_cast<std::streamsize>(used_));
    used_ = 0;
  }

 private:
  static constexpr std::size_t pieceSize = std::size_t{1} << 17;

  void makeRoom(std::size_t size) {
    flush();
    if (text_.size() < size) text_.resize(size);
  }

  std::ostream& stream_;
  std::vector<char> text_;
  std::size_t used_ = 0;
};

}  // namespace tools
