#include "tools/mainapp/line_buffer.h"

#include <utility>

namespace tools {

std::optional<std::string> LineBuffer::takeLine() {
  const std::size_t end = text_.find('\n');
  if (end == std::string::npos) return std::nullopt;
  std::string line = text_.substr(0, end);
  text_.erase(0, end + 1);
  return line;
}

std::optional<std::string> LineBuffer::takeRest() {
  if (text_.empty()) return std::nullopt;
  return std::exchange(text_, {});
}

}  // namespace tools
