#include "support/log_rules.h"

#include <algorithm>
#include <cstddef>

#include "platform/log_sources.h"
#include "usage/record_bytes.h"

namespace {

using namespace std::chrono_literals;
using platform::LogSource;

constexpr std::size_t collectCommandBufferSize = 512;  // frozen: doc/compatibility.md
constexpr std::string_view program = "Tovalin";
constexpr std::size_t maxBytesOfSource = 20'000'000;

// Copying 20 MB, or the newest entries of a journal, takes seconds. The limits bound the time lost to a
// source that blocks, such as an unreachable file system or a folder with millions of entries.
constexpr std::chrono::seconds folderLimit = 10s;
constexpr std::chrono::seconds copyLimit = 30s;
constexpr std::chrono::seconds archiveLimit = 120s;

CollectionCommand copyFrom(LogSource source, const std::string& folder) {
  return {platform::copyLogsCommand(source, program, folder, maxBytesOfSource), copyLimit};
}

}  // namespace

std::string collectionName(const std::tm& now) {
  std::string time = recordTime(now);
  std::ranges::replace(time, ' ', 'T');
  std::ranges::replace(time, ':', '-');
  return "tovalinlog_" + time;
}

std::optional<std::array<CollectionCommand, 6>> collectionCommands(std::string_view name) {
  const std::string folder = "/tmp/" + std::string(name);
  const std::array<CollectionCommand, 6> commands = {{
      {platform::newFolderCommand(folder), folderLimit},
      copyFrom(LogSource::ProgramLogs, folder),
      copyFrom(LogSource::SystemLog, folder),
      copyFrom(LogSource::UserCrashReports, folder),
      copyFrom(LogSource::SystemCrashReports, folder),
      {platform::archiveCommand(folder, std::string(name) + ".zip"), archiveLimit},
  }};
  const bool fit = std::ranges::all_of(
      commands, [](const auto& command) { return command.text.size() < collectCommandBufferSize; });
  return fit ? std::optional(commands) : std::nullopt;
}
