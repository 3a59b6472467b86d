#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "usage/record_format.h"

// A "-ncdat" message as it was read from the notification pipe: its first byte is the '-' of the command, and
// what was not received is zero. The layout is in doc/usage_record_format.md.
using CollectMessage = std::span<const char, record_format::message::size>;

// Points into its message.
struct TransferEntry {
  std::int32_t kind;
  std::string_view size;  // 8 bytes as they came, little-endian
  std::string_view name;
};

// The fields of a message. Every value of every byte is allowed: names end at their NUL, and a name without
// one is cut to the longest that its field may hold. Pure; any thread.
[[nodiscard]] std::uint32_t dataCommandOf(CollectMessage message);
[[nodiscard]] std::string_view deviceNameOf(CollectMessage message);
[[nodiscard]] std::uint32_t entryCountOf(CollectMessage message);

// The entries of a message with a count of at most `record_format::message::mostEntries`; none beyond it.
[[nodiscard]] std::vector<TransferEntry> transferEntriesOf(CollectMessage message);
