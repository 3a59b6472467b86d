#include "usage/record_bytes.h"

#include <cstdio>

namespace {

using record_format::Code;

void add(std::string& bytes, Code code) {
  bytes += static_cast<char>(code);
}

// A length byte and the text it counts.
void addCounted(std::string& bytes, std::string_view text) {
  bytes += static_cast<char>(text.size());
  bytes += text;
}

void addVersion(std::string& bytes, std::string_view bundleVersion) {
  add(bytes, Code::Version);
  addCounted(bytes, bundleVersion.substr(0, record_format::longestBundleVersion));
  addCounted(bytes, record_format::fixedVersion);
}

// The arguments are cut to their digits, so that every clock gives a text of the same length.
std::string formatted(const char* format, int year, int month, int day, int hour = 0, int minute = 0,
                      int second = 0) {
  char text[40];
  std::snprintf(text, sizeof text, format, unsigned(year) % 10000, unsigned(month) % 100, unsigned(day) % 100,
                unsigned(hour) % 100, unsigned(minute) % 100, unsigned(second) % 100);
  return text;
}

Code codeFor(std::int32_t kind, Code before) {
  if (kind == 1) return Code::TransferKind1;
  if (kind == 2) return Code::TransferKind2;
  return before;
}

}  // namespace

std::string usageFileName(const std::tm& day) {
  return formatted("Tovalin_%04u_%02u_%02u.dat", day.tm_year + 1900, day.tm_mon + 1, day.tm_mday);
}

std::string recordTime(const std::tm& time) {
  return formatted("%04u-%02u-%02u %02u:%02u:%02u", time.tm_year + 1900, time.tm_mon + 1, time.tm_mday,
                   time.tm_hour, time.tm_min, time.tm_sec);
}

std::string headerBytes(const std::tm& day, std::string_view identifier, std::uint8_t osCode,
                        std::string_view bundleVersion) {
  std::string bytes(record_format::magic);
  bytes += recordTime(day).substr(0, record_format::dateLength);
  add(bytes, Code::Identifier);
  const std::string identifierText = "{" + std::string(identifier) + "}";
  addCounted(bytes, std::string_view(identifierText).substr(0, record_format::longestIdentifierText));
  add(bytes, Code::OperatingSystem);
  bytes += static_cast<char>(osCode);
  addVersion(bytes, bundleVersion);
  return bytes;
}

std::string startRecord(std::string_view bundleVersion, const std::tm& time) {
  std::string bytes;
  addVersion(bytes, bundleVersion);
  add(bytes, Code::StartTime);
  addCounted(bytes, recordTime(time));
  return bytes;
}

std::string quitRecord(const std::tm& time) {
  std::string bytes;
  add(bytes, Code::Quit);
  addCounted(bytes, recordTime(time));
  return bytes;
}

std::string deviceEventRecord(std::uint32_t dataCommand, const std::tm& time, std::string_view deviceName) {
  std::string bytes;
  add(bytes, dataCommand == record_format::message::deviceEvent4 ? Code::DeviceEvent4 : Code::DeviceEvent3);
  addCounted(bytes, recordTime(time));
  if (deviceName.empty()) deviceName = record_format::unknownDeviceName;
  addCounted(bytes, deviceName.substr(0, record_format::longestDeviceName));
  return bytes;
}

std::string transferRecords(std::span<const TransferEntry> entries) {
  std::string bytes;
  Code code = Code::TransferKind1;
  for (const TransferEntry& entry : entries) {
    code = codeFor(entry.kind, code);
    add(bytes, code);
    addCounted(bytes, {entry.size.data(), entry.size.size()});
    addCounted(bytes, entry.name.substr(0, record_format::longestTransferName));
  }
  return bytes;
}
