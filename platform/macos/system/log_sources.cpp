#include "platform/log_sources.h"

namespace platform {
namespace {

// Only root and the user write these folders, so cp meets no link and no FIFO of others; and its copies lie
// in a folder that only the user can enter. All of a file is copied: the system rotates its logs at some
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

std::string copyLogsCommand(LogSource source, std::string_view program, std::string_view folder,
                            std::size_t /*maxBytes*/) {
  return "cp " + sourceOf(source, program) + " " + std::string(folder) + "/";
}

std::string archiveCommand(std::string_view folder, std::string_view name) {
  return "zip ~/Desktop/" + std::string(name) + " " + std::string(folder) + "/*.*";
}

}  // namespace platform
