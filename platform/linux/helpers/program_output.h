#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "platform/linux/helpers/collect_request.h"

namespace helpers {

// Runs the command, with /dev/null as input, for increasing numbers of entries until the output no longer
// grows, and keeps the end of the last output, even if it is empty. Kills a run with SIGKILL when `timeout`
// has passed. If a run is killed or exits with a status other than 0, keeps the output of the previous run
// or, for the first run, its partial output. Blocks. Returns the number of bytes kept; nullopt with errno
// set if the file cannot be created or written.
[[nodiscard]] std::optional<std::size_t> keepOutput(const KeepOutput& request);

// Runs the command with /dev/null as input and a temporary file in the target folder as output. Creates the
// target folder and its parents if they do not exist. If the command succeeds, renames the file to its name
// and replaces a file of that name. Blocks. Returns nullopt on success, else an error message.
[[nodiscard]] std::optional<std::string> keepArchive(const KeepArchive& request);

}  // namespace helpers
