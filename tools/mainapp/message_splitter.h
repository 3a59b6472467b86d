#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace tools {

// What the agent says on the command pipe.
inline constexpr std::array<std::string_view, 4> kMessages = {"-ton", "-toff", "-m", "-u"};

struct Message {
  std::string text;
  bool known = false;

  bool operator==(const Message&) const = default;
};

[[nodiscard]] bool isKnownMessage(std::string_view text);

// Takes apart what one read of the command pipe gave: messages carry no delimiter, so that several which were
// written before the reader came stand in a row. The longest message that fits is taken at each place; bytes
// that start none make up one unknown message, up to the next place that starts one. Joined in their order,
// the results give the bytes.
[[nodiscard]] std::vector<Message> splitMessages(std::string_view bytes);

}  // namespace tools
