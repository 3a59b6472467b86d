// Input: a version, split into pieces, numbers and the code of the operating system.

#include "usage/version_text.h"

#include <algorithm>
#include <cstdlib>
#include <string>

#include "tests/fuzz/requirement.h"
#include "tests/fuzz/target.h"
#include "usage/os_code.h"

namespace {

using fuzz::require;

void checkPieces(std::string_view text, std::string_view separators) {
  const auto pieces = splitAtEach(text, separators);
  const char* place = text.data();
  for (const std::string_view piece : pieces) {
    require(piece.data() == place, "a piece begins after the preceding separator");
    require(piece.find_first_of(separators) == std::string_view::npos, "a piece holds no separator");
    place += piece.size() + 1;
  }
  require(place == text.data() + text.size() + 1, "the pieces and separators are the text");
}

// strtoll() must agree on every text up to its first NUL.
void checkNumber(const std::string& text) {
  require(integerValue(text.c_str()) == std::strtoll(text.c_str(), nullptr, 10),
          "the number is the right one");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(data, data + size);
  for (const char* const separators : {"", ".", " ()"}) checkPieces(text, separators);
  checkNumber(text);
  const std::uint8_t code = osCodeFor(text);
  require(code >= 64 && code <= 68, "the operating system's code is a known one");
  return 0;
}
