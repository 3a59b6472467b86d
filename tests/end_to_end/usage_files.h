#pragma once

#include <filesystem>
#include <string>
#include <vector>

// The usage files, the oldest day's first; none where there is no folder for them yet.
[[nodiscard]] std::vector<std::filesystem::path> usageFiles();

// What stands in the usage file, where there is one, and how often these bytes are in it. Where midnight
// has come meanwhile, the records of the new day are added.
[[nodiscard]] std::string recordedUsage();
[[nodiscard]] int recordsLike(const std::string& bytes);

// How records begin.
inline const std::string startRecord =
    "\x01\x05"
    "1.0.0\x07"
    "1.0.0.0\x02\x13";
inline const std::string quitRecord = "\x03\x13";
