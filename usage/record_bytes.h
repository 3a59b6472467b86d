#pragma once

#include <cstdint>
#include <ctime>
#include <span>
#include <string>
#include <string_view>

#include "usage/collect_message.h"

// Encodes the items of a usage record file (doc/usage_record_format.md). Times are local and independent of
// the locale. Texts are cut to the maximum length of their field. Pure functions; thread-safe.

// Returns the name of the file for `day`, such as "Tovalin_2024_03_07.dat".
[[nodiscard]] std::string usageFileName(const std::tm& day);

// Returns the time as "2024-03-07 09:05:00", always 19 characters.
[[nodiscard]] std::string recordTime(const std::tm& time);

// Takes 66 bytes plus the bundle version for an identifier of 36 characters.
[[nodiscard]] std::string headerBytes(const std::tm& day, std::string_view identifier, std::uint8_t osCode,
                                      std::string_view bundleVersion);

// Takes 31 bytes plus the bundle version.
[[nodiscard]] std::string startRecord(std::string_view bundleVersion, const std::tm& time);

// Takes 21 bytes.
[[nodiscard]] std::string quitRecord(const std::tm& time);

// Takes 22 bytes plus the name. `dataCommand` is 3 or 4. An empty name becomes "Unknown".
[[nodiscard]] std::string deviceEventRecord(std::uint32_t dataCommand, const std::tm& time,
                                            std::string_view deviceName);

// Takes 11 bytes plus the name for each entry. An entry of a kind other than 1 or 2 gets the code of the
// previous entry; the first one gets that of kind 1.
[[nodiscard]] std::string transferRecords(std::span<const TransferEntry> entries);
