#include "platform/linux/helpers/collect_request.h"

#include <charconv>
#include <optional>

namespace helpers {
namespace {

std::optional<std::int64_t> parsePositive(const std::string& text) {
  std::int64_t number = 0;
  const char* end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || rest != end || number <= 0) return std::nullopt;
  return number;
}

bool isFileName(const std::string& name) {
  return !name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos;
}

bool isAbsolute(const std::string& path) {
  return path.starts_with('/');
}

Refusal invalidName(const std::string& text) {
  return {"\"" + text + "\" is not a file name"};
}

Refusal invalidNumber(const std::string& text) {
  return {"\"" + text + "\" is not a positive number"};
}

CollectRequest parseCopy(CopyFiles::Oversized oversized, const Arguments& arguments) {
  const bool isNamed = arguments.size() == 6;
  if (arguments.size() != 5 && !isNamed) return Refusal{"expected LIMIT SOURCE PATTERN TARGET [NAME]"};
  const auto limit = parsePositive(arguments[1]);
  if (!limit) return invalidNumber(arguments[1]);
  if (isNamed && !isFileName(arguments[5])) return invalidName(arguments[5]);
  return CopyFiles{oversized,    *limit,       arguments[2],
                   arguments[3], arguments[4], isNamed ? arguments[5] : std::string()};
}

CollectRequest parseOutput(const Arguments& arguments) {
  if (arguments.size() < 6) return Refusal{"expected LIMIT SECONDS TARGET NAME COMMAND"};
  const auto limit = parsePositive(arguments[1]);
  if (!limit) return invalidNumber(arguments[1]);
  const auto timeout = parsePositive(arguments[2]);
  if (!timeout) return invalidNumber(arguments[2]);
  if (!isFileName(arguments[4])) return invalidName(arguments[4]);
  return KeepOutput{*limit,
                    std::chrono::seconds(*timeout),
                    arguments[3],
                    arguments[4],
                    {arguments.begin() + 5, arguments.end()}};
}

CollectRequest parseArchive(const Arguments& arguments) {
  if (arguments.size() < 5) return Refusal{"expected SOURCE TARGET NAME COMMAND"};
  // A relative path would depend on the folder in which the agent was started.
  if (!isAbsolute(arguments[2])) return Refusal{"\"" + arguments[2] + "\" is not an absolute path"};
  if (!isFileName(arguments[3])) return invalidName(arguments[3]);
  return KeepArchive{arguments[1], arguments[2], arguments[3], {arguments.begin() + 4, arguments.end()}};
}

}  // namespace

CollectRequest parseCollectRequest(const Arguments& arguments) {
  if (arguments.empty()) return Refusal{"a subcommand is missing"};
  const std::string& subcommand = arguments[0];
  if (subcommand == "--help") return ShowUsage{};
  if (subcommand == "whole") return parseCopy(CopyFiles::Oversized::Skipped, arguments);
  if (subcommand == "newest") return parseCopy(CopyFiles::Oversized::EndOnly, arguments);
  if (subcommand == "output") return parseOutput(arguments);
  if (subcommand == "archive") return parseArchive(arguments);
  return Refusal{"unknown subcommand \"" + subcommand + "\""};
}

}  // namespace helpers
