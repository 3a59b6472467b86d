#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace tools {

// The messages of the agent on the command pipe.
inline constexpr std::array<std::string_view, 4> kMessages = {"-ton", "-toff", "-m", "-u"};

struct Message {
  std::string text;
  bool known = false;

  bool operator==(const Message&) const = default;
};

[[nodiscard]] bool isKnownMessage(std::string_view text);

// Splits the bytes of one read(2) of the command pipe. Messages have no delimiter, so several messages
// written before the read follow one another. At each position the longest matching message is taken; bytes
// that match none are collected into one unknown message up to the next match. The concatenation of the
// results equals the input.
[[nodiscard]] std::vector<Message> splitMessages(std::string_view bytes);

}  // namespace tools
