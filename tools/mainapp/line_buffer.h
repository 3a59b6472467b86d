#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tools {

// Splits a stream of bytes into lines without line ends.
class LineBuffer {
 public:
  void append(std::string_view bytes) { text_ += bytes; }

  // Returns the next complete line; nullopt if there is none yet.
  [[nodiscard]] std::optional<std::string> takeLine();

  // Returns the text after the last line end, for use at end of file; nullopt if it is empty.
  [[nodiscard]] std::optional<std::string> takeRest();

 private:
  std::string text_;
};

}  // namespace tools
