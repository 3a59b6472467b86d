#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <variant>

#include "platform/linux/helpers/helper_program.h"

namespace helpers {

// Request to copy the files of `source` whose names match `pattern` to the folder `target`, the newest first,
// up to `limit` bytes in total. With a `name`, only the newest file is copied, under that name.
struct CopyFiles {
  // Treatment of a file that exceeds the rest of the limit: it is left out, or its end is copied.
  enum class Oversized { Skipped, EndOnly };

  Oversized oversized = Oversized::Skipped;
  std::int64_t limit = 0;
  std::string source;
  std::string pattern;
  std::string target;
  std::string name;
};

// Request to run `command` with a number of entries as its last argument, for at most `timeout`, and to keep
// the last `limit` bytes of its output as the file `name` in the folder `target`.
struct KeepOutput {
  std::int64_t limit = 0;
  std::chrono::seconds timeout{};
  std::string target;
  std::string name;
  Arguments command;
};

// Request to run `command`, which packs the contents of the folder `source`, and to keep its output as the
// file `name` in the folder `target`.
struct KeepArchive {
  std::string source;
  std::string target;
  std::string name;
  Arguments command;
};

using CollectRequest = std::variant<ShowUsage, Refusal, CopyFiles, KeepOutput, KeepArchive>;

[[nodiscard]] CollectRequest parseCollectRequest(const Arguments& arguments);

}  // namespace helpers
