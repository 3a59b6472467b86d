#pragma once

#include <cstdint>
#include <ctime>
#include <span>
#include <string>
#include <string_view>

#include "usage/collect_message.h"

// The items of a usage record file as bytes; their layout is in doc/usage_record_format.md. Times are local
// and in the same form whatever the user's locale. Texts beyond the longest that their item may hold are cut
// to it. Pure; any thread.

// "Tovalin_2024_03_07.dat", the file of that day.
[[nodiscard]] std::string usageFileName(const std::tm& day);

// "2024-03-07 09:05:00", always 19 characters.
[[nodiscard]] std::string recordTime(const std::tm& time);

// 66 bytes and the bundle version for an identifier of 36 characters.
[[nodiscard]] std::string headerBytes(const std::tm& day, std::string_view identifier, std::uint8_t osCode,
                                      std::string_view bundleVersion);

// 31 bytes and the bundle version.
[[nodiscard]] std::string startRecord(std::string_view bundleVersion, const std::tm& time);

// 21 bytes.
[[nodiscard]] std::string quitRecord(const std::tm& time);

// 22 bytes and the name. `dataCommand` is 3 or 4; no name stands for an unknown device.
[[nodiscard]] std::string deviceEventRecord(std::uint32_t dataCommand, const std::tm& time,
                                            std::string_view deviceName);

// 11 bytes and the name for each entry. An entry of another kind than 1 or 2 takes the code of the one before
// it, and the first one that of kind 1.
[[nodiscard]] std::string transferRecords(std::span<const TransferEntry> entries);
