#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tests/harness/usage_sample.h"
#include "tests/usage/record_parts.h"
#include "tests/usage/settings_fixture.h"
#include "usage/usage_record.h"

namespace settings_test {

using namespace std::string_literals;

inline constexpr const char* kToday = "/tmp/support/Tovalin/Tovalin_2024_03_07.dat";

// The header of 7 March 2024 for version 1.4.2.
inline const std::string& kHeader = test_support::kUsageHeader;

// The quit record of 09:05:00 on that day.
inline constexpr const char* kQuit =
    "\x03\x13"
    "2024-03-07 09:05:00";
inline constexpr std::size_t kQuitSize = 21;

// Builds a "-ncdat" message byte by byte.
class Message {
 public:
  explicit Message(std::uint32_t dataCommand) {
    put(0, "-ncdat");
    putInteger(10, dataCommand);
  }

  Message& put(std::size_t offset, std::string_view bytes) {
    std::ranges::copy(bytes, bytes_.begin() + static_cast<std::ptrdiff_t>(offset));
    return *this;
  }
  Message& putInteger(std::size_t offset, std::uint32_t value) {
    for (int i = 0; i < 4; ++i)
      bytes_[offset + static_cast<std::size_t>(i)] = static_cast<char>(value >> 8 * i);
    return *this;
  }
  Message& fill(std::size_t offset, char byte) {
    std::fill(bytes_.begin() + static_cast<std::ptrdiff_t>(offset), bytes_.end(), byte);
    return *this;
  }

  operator CollectMessage() const { return bytes_; }  // NOLINT(google-explicit-constructor)

 private:
  std::array<char, 1024> bytes_{};
};

struct Entry {
  std::uint32_t kind;
  std::string size;  // 8 bytes
  std::string name;
};

inline Message transfers(const std::vector<Entry>& entries) {
  Message message(0);
  message.putInteger(14, static_cast<std::uint32_t>(entries.size()));
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const std::size_t at = 18 + 22 * i;
    message.putInteger(at, entries[i].kind).put(at + 4, entries[i].size).put(at + 12, entries[i].name);
  }
  return message;
}

inline Message deviceEvent(std::uint32_t dataCommand, const std::string& name) {
  return Message(dataCommand).put(14, name);
}

// Sets the clock to 09:05:00 on 7 March 2024, the version to 1.4.2 and a fixed identifier.
inline void setUpRecords() {
  makeUserFiles();
  write("/tmp/support/Tovalin/TovalinUUID.txt", "00112233-4455-6677-8899-AABBCCDDEEFF");
  record_parts::setClock("2024-03-07 09:05:00");
  record_parts::bundleVersion = "1.4.2";
}

class Records : public testing::Test, protected RecordedLog {
 protected:
  void SetUp() override {
    setUpRecords();
    ASSERT_TRUE(log_.valid());
  }
  void TearDown() override { removeUserFiles(); }
};

}  // namespace settings_test
