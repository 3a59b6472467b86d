#pragma once

#include <chrono>
#include <string>
#include <variant>
#include <vector>

namespace companions {

// What the agent asks to be shown.
struct Notice {
  std::string title = {};
  std::string subtitle = {};
  std::string message = {};
  std::string closeLabel = {};   // of the button that closes the notice
  std::string actionLabel = {};  // of the button that opens the updater
  std::string bundlePath = {};   // of the main application
  std::chrono::milliseconds timeout{};

  bool operator==(const Notice&) const = default;
};

// Reads the arguments behind the program's name: the seven options of the help, each once, in any order, a
// value after each. Returns what is wrong if they are not that.
[[nodiscard]] std::variant<Notice, std::string> parseNotice(const std::vector<std::string>& arguments);

// The subtitle and the message, a line each. `markup` is whether the server reads the text as markup:
// characters that would then have a meaning are escaped.
[[nodiscard]] std::string bodyText(const Notice& notice, bool markup);

[[nodiscard]] std::string updaterProgram(const Notice& notice);

}  // namespace companions
