#include "usage/record_bytes.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace {

using record_format::Code;

void add(std::string& bytes, Code code) {
  bytes += static_cast<char>(code);
}

// Adds a length byte followed by the text.
void addCounted(std::string& bytes, std::string_view text) {
  bytes += static_cast<char>(text.size());
  bytes.append(text);
}

void addVersion(std::string& bytes, std::string_view bundleVersion) {
  add(bytes, Code::Version);
  addCounted(bytes, bundleVersion.substr(0, record_format::maxBundleVersionLength));
  addCounted(bytes, record_format::fixedVersion);
}

// Writes the last `digits` digits of `value` before `end`, so that any time yields a text of the same length.
void putDigits(char* end, int digits, int value) {
  for (; digits > 0; --digits, value /= 10) *--end = static_cast<char>('0' + std::abs(value % 10));
}

std::array<char, record_format::dateLength> dateText(const std::tm& day, char separator) {
  std::array<char, record_format::dateLength> text;
  text.fill(separator);
  putDigits(text.data() + 4, 4, day.tm_year + 1900);
  putDigits(text.data() + 7, 2, day.tm_mon + 1);
  putDigits(text.data() + 10, 2, day.tm_mday);
  return text;
}

std::array<char, record_format::timeLength> timeText(const std::tm& time) {
  std::array<char, record_format::timeLength> text;
  text.fill(':');
  std::ranges::copy(dateText(time, '-'), text.begin());
  text[record_format::dateLength] = ' ';
  putDigits(text.data() + 13, 2, time.tm_hour);
  putDigits(text.data() + 16, 2, time.tm_min);
  putDigits(text.data() + 19, 2, time.tm_sec);
  return text;
}

template <std::size_t length>
std::string_view viewOf(const std::array<char, length>& text) {
  return {text.data(), text.size()};
}

void addCountedTime(std::string& bytes, const std::tm& time) {
  addCounted(bytes, viewOf(timeText(time)));
}

Code codeFor(std::int32_t kind, Code before) {
  if (kind == record_format::message::entryKind1) return Code::TransferKind1;
  if (kind == record_format::message::entryKind2) return Code::TransferKind2;
  return before;
}

}  // namespace

std::string usageFileName(const std::tm& day) {
  return std::string("Tovalin_").append(viewOf(dateText(day, '_'))).append(".dat");
}

std::string recordTime(const std::tm& time) {
  return std::string(viewOf(timeText(time)));
}

std::string headerBytes(const std::tm& day, std::string_view identifier, std::uint8_t osCode,
                        std::string_view bundleVersion) {
  std::string bytes(record_format::magic);
  bytes += viewOf(dateText(day, '-'));
  add(bytes, Code::Identifier);
  const std::string identifierText = "{" + std::string(identifier) + "}";
  addCounted(bytes, std::string_view(identifierText).substr(0, record_format::maxIdentifierTextLength));
  add(bytes, Code::OperatingSystem);
  bytes += static_cast<char>(osCode);
  addVersion(bytes, bundleVersion);
  return bytes;
}

std::string startRecord(std::string_view bundleVersion, const std::tm& time) {
  std::string bytes;
  addVersion(bytes, bundleVersion);
  add(bytes, Code::StartTime);
  addCountedTime(bytes, time);
  return bytes;
}

std::string quitRecord(const std::tm& time) {
  std::string bytes;
  add(bytes, Code::Quit);
  addCountedTime(bytes, time);
  return bytes;
}

std::string deviceEventRecord(std::uint32_t dataCommand, const std::tm& time, std::string_view deviceName) {
  std::string bytes;
  bytes.reserve(record_format::maxDeviceEventLength);
  add(bytes, dataCommand == record_format::message::deviceEvent4 ? Code::DeviceEvent4 : Code::DeviceEvent3);
  addCountedTime(bytes, time);
  if (deviceName.empty()) deviceName = record_format::unknownDeviceName;
  addCounted(bytes, deviceName.substr(0, record_format::maxDeviceNameLength));
  return bytes;
}

std::string transferRecords(std::span<const TransferEntry> entries) {
  std::string bytes(entries.size() * record_format::maxTransferLength, '\0');
  char* end = bytes.data();
  Code code = Code::TransferKind1;
  for (const TransferEntry& entry : entries) {
    code = codeFor(entry.kind, code);
    const std::string_view name = entry.name.substr(0, record_format::maxTransferNameLength);
    *end++ = static_cast<char>(code);
    *end++ = static_cast<char>(entry.size.size());
    end = std::ranges::copy(entry.size, end).out;
    *end++ = static_cast<char>(name.size());
    end = std::ranges::copy(name, end).out;
  }
  bytes.resize(static_cast<std::size_t>(end - bytes.data()));
  return bytes;
}
