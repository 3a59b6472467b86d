#include "tests/faults/unusual_output.h"

#include <algorithm>
#include <iterator>
#include <sstream>

namespace {

// Matched in the console log only, because the system log may hold a second entry about a lost start record.
constexpr std::string_view lostRecordErrors[] = {"open log failed: ", "write log failed: "};
constexpr std::string_view failedUpload = "] (null)";
constexpr std::string_view lostPipeErrors[] = {"notiThread] open pipe error",
                                               "notiThread] pipe select error"};
constexpr std::string_view commandPipeErrors[] = {"log 3: open pipe failed. ", "log 3: select failed. ",
                                                  "log 3: write error. "};
// Prefixes of the fatal error messages.
constexpr std::string_view fatalErrors[] = {
    "out of memory",    "cannot create the signal pipe: ", "cannot install a signal handler: ",
    "cannot restart: ", "cannot open the display ",        "not inside a main application's bundle"};

bool isUnusualEntry(const std::string& text) {
  return text.starts_with("log 3: ") && !text.starts_with("log 3: Tovalin working path") &&
         !text.starts_with("log 3: bActive") && !text.starts_with("log 3: Dark Mode");
}

// Expected lines are versions, an upload's reply or its absence, and the logs that a collection does not
// find.
bool isUnusualLine(const std::string& line) {
  return !line.starts_with("cp: cannot stat ") && !line.ends_with("] ") && !line.ends_with(failedUpload) &&
         line.find("] recentversion") == std::string::npos;
}

// Removes the prefix of a fatal error in the log or on the console. Returns an empty text if there is none.
std::string_view withoutPrefix(std::string_view text) {
  for (const std::string_view beginning : {"log 3: ", "TovalinTray: "}) {
    if (text.starts_with(beginning)) return text.substr(beginning.size());
  }
  return {};
}

}  // namespace

UnusualOutput::UnusualOutput(const std::vector<std::string>& log, const std::string& console) {
  std::ranges::copy_if(log, std::back_inserter(unusual_), isUnusualEntry);
  std::istringstream lines(console);
  for (std::string line; std::getline(lines, line);) {
    if (isUnusualLine(line)) unusual_.push_back(line);
    if (line.ends_with(failedUpload)) ++failedUploads_;
  }
}

bool UnusualOutput::contains(std::string_view text) const {
  return count(text) > 0;
}

int UnusualOutput::count(std::string_view text) const {
  return static_cast<int>(std::ranges::count_if(
      unusual_, [&](const std::string& word) { return word.find(text) != std::string::npos; }));
}

int UnusualOutput::lostRecords() const {
  return static_cast<int>(std::ranges::count_if(unusual_, [](const std::string& word) {
    return std::ranges::any_of(lostRecordErrors,
                               [&](std::string_view text) { return word.starts_with(text); });
  }));
}

bool UnusualOutput::reportsLostPipe() const {
  return std::ranges::any_of(lostPipeErrors, [&](std::string_view text) { return contains(text); });
}

bool UnusualOutput::reportsCommandPipeError() const {
  return std::ranges::any_of(commandPipeErrors, [&](std::string_view text) { return contains(text); });
}

bool UnusualOutput::reportsFatalError() const {
  return std::ranges::any_of(unusual_, [](const std::string& word) {
    const std::string_view text = withoutPrefix(word);
    return std::ranges::any_of(fatalErrors, [&](std::string_view end) { return text.starts_with(end); });
  });
}
