#pragma once

#include "platform/linux/helpers/collect_request.h"

namespace helpers {

// Runs the command, with nothing to read, for more and more entries until it prints no more than before, and
// keeps the end of what it prints last, also if that is nothing. A run that is still going when the patience
// is over is ended by SIGKILL. After such a run, or one that ends with another status than 0, the output of
// the run before it is kept or, if it was the first one, what it has printed. Returns how many bytes were
// kept; -1 with errno set if the file could not be made or written.
[[nodiscard]] std::int64_t keepOutput(const KeepOutput& request);

// Runs the command, with nothing to read and its standard output being a file in the target folder, which is
// made with the folders above it if it is missing. Once the command has succeeded, the file takes the place
// of whatever stands at its name. Returns an empty text, or what went wrong.
[[nodiscard]] std::string keepArchive(const KeepArchive& request);

}  // namespace helpers
