#pragma once

#include <chrono>
#include <string>
#include <variant>
#include <vector>

namespace tools {

// The notice that the agent passes to the notification helper.
struct Notice {
  std::string title;
  std::string subtitle;
  std::string message;
  std::string closeLabel;
  std::string actions;
  std::string bundlePath;
  std::chrono::milliseconds timeout{};

  bool operator==(const Notice&) const = default;
};

// Parses the command line without the program's name: the seven options of the help text, each exactly once,
// in any order, each followed by a value. Returns an error text if it is invalid.
[[nodiscard]] std::variant<Notice, std::string> parseNotice(const std::vector<std::string>& arguments);

// Returns the notice as text, one line for each part.
[[nodiscard]] std::string noticeText(const Notice& notice);

}  // namespace tools
