#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <variant>

#include "platform/linux/helpers/collect_request.h"
#include "platform/linux/helpers/helper_program.h"
#include "platform/linux/helpers/log_files.h"
#include "platform/linux/helpers/program_output.h"

namespace {

constexpr char program[] = "collectlogs";

constexpr char usage[] =
    "Usage: collectlogs whole|newest LIMIT SOURCE PATTERN TARGET [NAME]\n"
    "       collectlogs output LIMIT SECONDS TARGET NAME COMMAND...\n"
    "       collectlogs archive SOURCE TARGET NAME COMMAND...\n"
    "\n"
    "Copies logs to a private folder and archives it. Follows no links, opens no FIFOs, and copies no "
    "files\nof other users from world-writable folders.\n"
    "\n"
    "whole    copies the files of SOURCE that match PATTERN, the newest first, at most LIMIT bytes\n"
    "newest   the same, but copies the end of a file that does not fit\n"
    "output   runs COMMAND with a number of entries as last argument, at most 200,000 and within SECONDS, "
    "and\n"
    "         writes the last LIMIT bytes of its output to TARGET/NAME\n"
    "archive  writes the output of COMMAND to TARGET/NAME if COMMAND succeeds\n";

// Prints no names of files, because other users may have chosen them.
int perform(const helpers::CopyFiles& request) {
  const helpers::CopyResult result = helpers::copyFiles(request);
  if (result.error != 0)
    return helpers::fail(program,
                         request.source + " to " + request.target + ": " + std::strerror(result.error));
  if (result.leftOut > 0)
    return helpers::fail(program, request.source + ": files skipped: " + std::to_string(result.leftOut));
  return result.copied > 0 ? helpers::Done : helpers::Failed;
}

int perform(const helpers::KeepOutput& request) {
  const auto kept = helpers::keepOutput(request);
  if (!kept) return helpers::fail(program, request.target + ": " + std::strerror(errno));
  return *kept > 0 ? helpers::Done : helpers::Failed;
}

int perform(const helpers::KeepArchive& request) {
  const auto problem = helpers::keepArchive(request);
  return problem ? helpers::fail(program, *problem) : helpers::Done;
}

}  // namespace

int main(int argc, char** argv) {
  helpers::prepareEnvironment();
  ::umask(S_IRWXG | S_IRWXO);
  const helpers::CollectRequest request = helpers::parseCollectRequest({argv + 1, argv + argc});
  if (const auto* files = std::get_if<helpers::CopyFiles>(&request)) return perform(*files);
  if (const auto* output = std::get_if<helpers::KeepOutput>(&request)) return perform(*output);
  if (const auto* archive = std::get_if<helpers::KeepArchive>(&request)) return perform(*archive);
  if (const auto* refusal = std::get_if<helpers::Refusal>(&request)) {
    return helpers::refuse(program, refusal->reason);
  }
  return helpers::showUsage(usage);
}
