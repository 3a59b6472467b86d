#pragma once

#include <string>

#include "tests/harness/processes/file_contents.h"

namespace test_support {

// Returns the fenced block after the line "<!-- example: NAME -->" of a document; empty if there is none.
[[nodiscard]] inline std::string exampleIn(const std::string& document, const std::string& name) {
  const std::string text = contentsOf(document);
  const std::string fence = "\n```";
  const std::size_t mark = text.find("<!-- example: " + name + " -->");
  const std::size_t open = text.find(fence, mark);
  if (mark == std::string::npos || open == std::string::npos) return {};
  const std::size_t begin = text.find('\n', open + fence.size()) + 1;
  return text.substr(begin, text.find(fence, begin - 1) + 1 - begin);
}

}  // namespace test_support
