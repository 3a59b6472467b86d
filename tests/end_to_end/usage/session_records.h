#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <random>
#include <string>
#include <string_view>
#include <vector>

// How often each usage record was written or found, by a key that identifies it: "start", "end", "device 3
// NAME", "transfer 1 SIZE NAME".
using RecordCounts = std::map<std::string, long>;

// Adds the records of a usage file. Returns false if it is damaged or holds a record of another day.
[[nodiscard]] bool countRecords(std::string_view file, RecordCounts& counts);

// Returns the records whose counts differ, one per line.
[[nodiscard]] std::string differenceOf(const RecordCounts& written, const RecordCounts& found);

// A "-ncdat" message and the records that it must produce.
struct DataMessage {
  std::string bytes;
  std::vector<std::string> records = {};
};

// Creates messages with distinct records, except for those of unknown devices.
class DataMessages {
 public:
  explicit DataMessages(std::mt19937& random) : random_(random) {}

  // Returns a message that produces records: events of named and unknown devices, and 1 to 30 transfers at
  // once.
  [[nodiscard]] DataMessage next();
  // Returns a message that produces none: an unknown data command or an invalid count.
  [[nodiscard]] DataMessage nextWithoutRecord();

 private:
  [[nodiscard]] unsigned below(unsigned end) { return static_cast<unsigned>(random_()) % end; }
  [[nodiscard]] DataMessage deviceEvent();
  [[nodiscard]] DataMessage transfers();

  std::mt19937& random_;
  std::uint64_t serial_ = 0;
};
