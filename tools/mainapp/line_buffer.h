#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tools {

// Turns a stream of bytes that comes in pieces into lines, without their ends.
class LineBuffer {
 public:
  void append(std::string_view bytes) { text_ += bytes; }

  // The next whole line; nothing when there is none yet.
  [[nodiscard]] std::optional<std::string> takeLine();

  // What stands after the last line end, for when nothing more comes; nothing when that is empty.
  [[nodiscard]] std::optional<std::string> takeRest();

 private:
  std::string text_;
};

}  // namespace tools
