#pragma once

#include <filesystem>
#include <string>
#include <vector>

// Returns the usage files, oldest day first; empty if their folder does not exist.
[[nodiscard]] std::vector<std::filesystem::path> usageFiles();

// Return the contents of the usage file, if there is one, and how often these bytes occur in them. If
// midnight has passed, include the records of the new day.
[[nodiscard]] std::string recordedUsage();
[[nodiscard]] int recordsLike(const std::string& bytes);

// The prefixes of records.
inline const std::string startRecord =
    "\x01\x05"
    "1.0.0\x07"
    "1.0.0.0\x02\x13";
inline const std::string quitRecord = "\x03\x13";
