#include "tests/faults/usage_check.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string_view>

#include "tests/end_to_end/usage_files.h"
#include "tests/harness/processes/file_contents.h"
#include "tools/tvldump/record_reader.h"

namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using test_support::contentsOf;

using Uploads = std::vector<std::string>;

const std::string kFolder = "/tmp/home/.local/share/Tovalin";
const std::string kWaiting(100'000, 'p');
const std::string kIdentity = kFolder + "/TovalinUUID.txt", kOption = kFolder + "/TovalinServerOption.txt";
constexpr const char* kStoredIdentity = "00112233-4455-6677-8899-AABBCCDDEEFF";
// The test upload server, because all other values select the default.
constexpr const char* kStoredOption = "0";

// The start record of an agent that could not read its bundle's version.
const std::string startRecordWithoutVersion =
    "\x01\x05"
    "0.0.0\x07"
    "1.0.0.0\x02\x13"s;

// An upload pass continues without a message if it cannot list the folder, read a file or delete one.
constexpr std::string_view silentBeforeUpload[] = {"open", "openat", "fdopendir", "readdir", "fstat",
                                                   "read", "mkdir",  "malloc",    "stat"};
constexpr std::string_view silentAfterUpload[] = {"lstat", "unlink"};

int occurrences(const std::string& text, const std::string& bytes) {
  int found = 0;
  for (std::size_t at = text.find(bytes); at != std::string::npos; at = text.find(bytes, at + 1)) ++found;
  return found;
}

// Returns the contents of the usage files except `waiting`.
std::vector<std::string> filesThere() {
  std::vector<std::string> contents;
  for (const fs::path& file : usageFiles()) {
    if (file != UsageCheck::waiting.path) contents.push_back(contentsOf(file));
  }
  return contents;
}

// An empty file is valid: the first record adds the header.
std::string damageOf(const std::string& bytes) {
  tools::RecordReader reader(bytes);
  while (reader.next()) continue;
  if (bytes.empty() || !reader.damage()) return {};
  return "damaged at byte " + std::to_string(reader.damage()->offset);
}

long timesSent(const PastFile& file, const Uploads& uploads) {
  return std::ranges::count_if(uploads,
                               [&](const std::string& upload) { return upload.starts_with(file.beginning); });
}

std::string damageOfUpload(const PastFile& file, const Uploads& uploads) {
  const long sent = timesSent(file, uploads);
  if (sent > 1) return "a past file was sent twice";
  if (sent == 0 && !fs::exists(file.path)) return "a past file is gone that was not sent";
  return {};
}

// Returns whether the failure of this call may have prevented the upload or, after it, the deletion.
bool mayStay(const PastFile& file, const Uploads& uploads, const std::string& call) {
  return timesSent(file, uploads) > 0 ? std::ranges::count(silentAfterUpload, call) > 0
                                      : std::ranges::count(silentBeforeUpload, call) > 0;
}

int startsRetained(const Uploads& uploads, const UnusualOutput& output) {
  // If the version is unreadable, the start record differs.
  const bool isUnknown = output.contains("0etBundleVersion fail");
  return UsageCheck::retained(startRecord, uploads) +
         (isUnknown ? UsageCheck::retained(startRecordWithoutVersion, uploads) : 0);
}

}  // namespace

const PastFile UsageCheck::waiting = {kFolder + "/Tovalin_2024_03_07.dat", kWaiting};

void UsageCheck::begin(bool isFirstLaunch) {
  *this = {};
  isFirstLaunch_ = isFirstLaunch;
  fs::remove_all(kFolder);
  fs::create_directories(kFolder);
  std::ofstream(waiting.path) << kWaiting;
  if (isFirstLaunch) return;
  std::ofstream(kIdentity) << kStoredIdentity;
  std::ofstream(kOption) << kStoredOption;
}

int UsageCheck::written(const std::string& bytes) {
  int found = 0;
  for (const std::string& file : filesThere()) found += occurrences(file, bytes);
  return found;
}

int UsageCheck::writtenWhole(const std::string& bytes) {
  int found = 0;
  for (const std::string& file : filesThere()) found += damageOf(file).empty() ? occurrences(file, bytes) : 0;
  return found;
}

int UsageCheck::retained(const std::string& bytes, const Uploads& uploads) {
  int found = written(bytes);
  const auto there = filesThere();
  // A file that could not be deleted is among the files and among the uploads; count it once.
  for (const std::string& upload : uploads)
    found += std::ranges::count(there, upload) == 0 ? occurrences(upload, bytes) : 0;
  return found;
}

std::string UsageCheck::damage(const Uploads& uploads) const {
  for (const std::string& file : filesThere()) {
    if (std::string damage = damageOf(file); !damage.empty()) return damage;
  }
  if (fs::exists(waiting.path) && contentsOf(waiting.path) != kWaiting) return "a past file has changed";
  const std::string identity = contentsOf(kIdentity), option = contentsOf(kOption);
  if (!isFirstLaunch_ && identity != kStoredIdentity) return "another identifier";
  if (!isFirstLaunch_ && option != kStoredOption) return "another server option";
  if (!identity.empty() && identity.size() != 36) return "half an identifier";
  if (isFirstLaunch_ && !option.empty() && option != "1") return "a server option of its own";
  return damageOfUpload(waiting, uploads);
}

std::string UsageCheck::duplicatesOrLosses(int starts, const Uploads& uploads,
                                           const UnusualOutput& output) const {
  if (startsRetained(uploads, output) > starts || retained(quitRecord, uploads) > 2)
    return "starts or ends too often";
  for (const auto& [record, number] : expected_) {
    if (retained(record, uploads) > number) return "has a record twice";
  }
  for (const auto& [record, number] : written_) {
    if (retained(record, uploads) < number) return "has lost a record that was written";
  }
  return {};
}

std::string UsageCheck::missingRecords(int starts, int ends, bool hasPipe, const Uploads& uploads,
                                       const UnusualOutput& output) const {
  if (startsRetained(uploads, output) > starts || retained(quitRecord, uploads) > ends)
    return "starts or ends twice";
  int missing = starts - startsRetained(uploads, output) + ends - retained(quitRecord, uploads);
  for (const auto& [record, number] : hasPipe ? expected_ : read_)
    missing += number - retained(record, uploads);
  const int reported = output.lostRecords();
  if (missing <= reported) return {};
  return std::to_string(missing) + " records are lost, of which " + std::to_string(reported) +
         " are reported";
}

std::string UsageCheck::unsent(const std::vector<PastFile>& files, const std::string& call,
                               const Uploads& uploads, const UnusualOutput& output) {
  int unexplained = 0;
  for (const PastFile& file : files) {
    if (std::string damage = damageOfUpload(file, uploads); !damage.empty()) return damage;
    if (fs::exists(file.path) && !mayStay(file, uploads, call)) ++unexplained;
  }
  return unexplained <= output.failedUploads() ? "" : "a past file was not sent, or is there still";
}
