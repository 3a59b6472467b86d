#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "usage/record_format.h"

// A "-ncdat" message as read from the notification pipe. Begins with the command's '-'; bytes that were not
// received are zero. Layout: doc/usage_record_format.md.
using CollectMessage = std::span<const char, record_format::message::size>;

// The views point into the message.
struct TransferEntry {
  std::int32_t kind;
  std::string_view size;  // 8 bytes, little-endian, unchanged
  std::string_view name;
};

// Read the fields of a message. Any byte value is valid. A name ends at its NUL; a name without one is cut to
// its maximum length. Thread-safe.
[[nodiscard]] std::uint32_t dataCommandOf(CollectMessage message);
[[nodiscard]] std::string_view deviceNameOf(CollectMessage message);
[[nodiscard]] std::uint32_t entryCountOf(CollectMessage message);

// Returns the message's entries, at most `record_format::message::maxEntries`.
[[nodiscard]] std::vector<TransferEntry> transferEntriesOf(CollectMessage message);
