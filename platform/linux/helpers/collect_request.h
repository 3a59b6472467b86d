#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <variant>

#include "platform/linux/helpers/helper_program.h"

namespace helpers {

// Copy the files of `source` whose names match `pattern` to the folder `target`: the newest first, `limit`
// bytes in all. With a `name`: only the newest one, under that name.
struct CopyFiles {
  // What becomes of a file that does not fit: it is left out, or its end is copied.
  enum class Oversized { LeftOut, CutToItsEnd };

  Oversized oversized = Oversized::LeftOut;
  std::int64_t limit = 0;
  std::string source;
  std::string pattern;
  std::string target;
  std::string name;
};

// Run `command`, followed by a number of entries, for `patience` at most and keep the last `limit` bytes that
// it prints as the file `name` in the folder `target`.
struct KeepOutput {
  std::int64_t limit = 0;
  std::chrono::seconds patience{};
  std::string target;
  std::string name;
  Arguments command;
};

// Run `command`, which packs what is in the folder `source`, and keep what it prints as the file `name` in
// the folder `target`.
struct KeepArchive {
  std::string source;
  std::string target;
  std::string name;
  Arguments command;
};

using CollectRequest = std::variant<ShowUsage, Refusal, CopyFiles, KeepOutput, KeepArchive>;

[[nodiscard]] CollectRequest parseCollectRequest(const Arguments& arguments);

}  // namespace helpers
