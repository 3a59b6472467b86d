#pragma once

#include <chrono>
#include <string>
#include <variant>
#include <vector>

namespace tools {

// What the agent asks the notification helper to show.
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

// Reads the command line that follows the program's name: the seven options of the help, each once, in any
// order, a value after each. Otherwise says what is wrong.
[[nodiscard]] std::variant<Notice, std::string> parseNotice(const std::vector<std::string>& arguments);

// What would be shown, a line for each part.
[[nodiscard]] std::string noticeText(const Notice& notice);

}  // namespace tools
