#include "platform/log_sources.h"

namespace platform {
namespace {

// Plain cp is safe here: only root and the user can write to the source folders, so these contain no links or
// FIFOs of other users. Copies whole files without a limit, because the system rotates its logs at a few
// megabytes.
std::string sourceOf(LogSource source, std::string_view program) {
  const std::string name(program);
  switch (source) {
    case LogSource::ProgramLogs:
      return "/private/var/log/" + name + "*.log";
    case LogSource::SystemLog:
      return "/private/var/log/system.log";
    case LogSource::UserCrashReports:
      return "~/Library/Logs/DiagnosticReports/" + name + "*.crash";
    case LogSource::SystemCrashReports:
      return "/Library/Logs/DiagnosticReports/" + name + "*.crash";
  }
  return {};
}

}  // namespace

std::string newFolderCommand(std::string_view folder) {
  return "mkdir " + std::string(folder);
}

std::string copyLogsCommand(LogSource source, std::string_view program, std::string_view folder,
                            std::size_t /*maxBytes*/) {
  return "cp " + sourceOf(source, program) + " " + std::string(folder) + "/";
}

std::string archiveCommand(std::string_view folder, std::string_view name) {
  return "zip ~/Desktop/" + std::string(name) + " " + std::string(folder) + "/*.*";
}

}  // namespace platform
