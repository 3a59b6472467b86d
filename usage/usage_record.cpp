#include "usage/usage_record.h"

#include <array>
#include <cerrno>
#include <optional>
#include <string>

#include "platform/clock.h"
#include "platform/log.h"
#include "usage/application_directory.h"
#include "usage/bundle_version.h"
#include "usage/installation_identity.h"
#include "usage/os_code.h"
#include "usage/record_bytes.h"
#include "usage/record_format.h"

using platform::LogPriority;
using platform::systemLog;

namespace {

namespace message = record_format::message;

std::string installationIdentifier() {
  std::array<char, 50> buffer{};
  GetTovalinUUID(buffer);
  return buffer.data();
}

std::string bundleVersionForRecord() {
  std::optional<std::string> version;
  if (getBundleVersion(version) == 0) return *version;
  systemLog(LogPriority::Error, bundleVersionFailure);
  return std::string(record_format::unknownBundleVersion);
}

// Creates the folder only after ENOENT, so that a record normally costs only the access to its file.
std::optional<UsageFile> openInApplicationDirectory(const std::string& name) {
  const auto path = applicationFile(name);
  if (!path) return std::nullopt;
  auto file = UsageFile::open(*path);
  if (file || errno != ENOENT || !applicationDirectory()) return file;
  return UsageFile::open(*path);
}

void appendRecord(const std::string& record, const std::tm& now) {
  UsageFile file;
  if (TvlDataOpenFile(file, now)) static_cast<void>(file.append(record));
}

}  // namespace

bool TvlDataOpenFile(UsageFile& file, const std::tm& now) {
  auto opened = openInApplicationDirectory(usageFileName(now));
  if (!opened) {
    platform::errorLog("open log failed");
    return false;
  }
  file = *std::move(opened);
  return !file.isEmpty() || TvlWriteHeadDataToFile(file, now);
}

bool TvlWriteHeadDataToFile(UsageFile& file, const std::tm& now) {
  const std::string identifier = installationIdentifier();
  const std::uint8_t osCode = GetOSVersion();
  return file.append(headerBytes(now, identifier, osCode, bundleVersionForRecord()));
}

void TvlWriteStartToFile() {
  const std::tm now = platform::currentLocalTime();
  const std::string record = startRecord(bundleVersionForRecord(), now);
  UsageFile file;
  if (!TvlDataOpenFile(file, now)) return systemLog(LogPriority::Error, "data file open fail");
  static_cast<void>(file.append(record));
}

void TvlWriteQuitToFile() {
  const std::tm now = platform::currentLocalTime();
  appendRecord(quitRecord(now), now);
}

void TvlGetCollectData(CollectMessage message) {
  switch (dataCommandOf(message)) {
    case message::deviceEvent3:
    case message::deviceEvent4:
      return TvlWriteMountDataToFile(message);
    case message::transfers:
      return TvlWriteTransferDataToFile(message);
    default:
      return systemLog(LogPriority::Error, "unknown command");
  }
}

void TvlWriteMountDataToFile(CollectMessage message) {
  const std::tm now = platform::currentLocalTime();
  const std::uint32_t command = dataCommandOf(message);
  if (command != message::deviceEvent3 && command != message::deviceEvent4) return;
  appendRecord(deviceEventRecord(command, now, deviceNameOf(message)), now);
}

void TvlWriteTransferDataToFile(CollectMessage message) {
  const std::uint32_t count = entryCountOf(message);
  if (count == 0 || count > message::maxEntries) return platform::errorLog("data count wrong!!");
  appendRecord(transferRecords(transferEntriesOf(message)), platform::currentLocalTime());
}
