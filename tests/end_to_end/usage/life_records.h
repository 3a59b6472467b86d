#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <random>
#include <string>
#include <string_view>
#include <vector>

// How often each usage record was written or found, by what tells it from the others: "start", "end",
// "device 3 NAME", "transfer 1 SIZE NAME".
using RecordCounts = std::map<std::string, long>;

// Adds the records of a usage file. False when it is damaged, or holds a record of another day.
[[nodiscard]] bool countRecords(std::string_view file, RecordCounts& counts);

// Those that are not in both so often, one a line.
[[nodiscard]] std::string differenceOf(const RecordCounts& written, const RecordCounts& found);

// A "-ncdat" message and the records that are to come of it.
struct LifeMessage {
  std::string bytes;
  std::vector<std::string> records = {};
};

// Makes messages of which no two leave the same record, but for those of unknown devices.
class LifeMessages {
 public:
  explicit LifeMessages(std::mt19937& random) : random_(random) {}

  // Of every kind that leaves records: events of named and unknown devices, and 1 to 30 transfers at once.
  [[nodiscard]] LifeMessage next();
  // One that leaves none: of an unknown data command, or with a count that none may have.
  [[nodiscard]] LifeMessage nextWithoutRecord();

 private:
  [[nodiscard]] unsigned below(unsigned end) { return static_cast<unsigned>(random_()) % end; }
  [[nodiscard]] LifeMessage deviceEvent();
  [[nodiscard]] LifeMessage transfers();

  std::mt19937& random_;
  std::uint64_t serial_ = 0;
};
