#pragma once

#include <chrono>
#include <string>
#include <variant>
#include <vector>

namespace companions {

// The notice that the agent requests.
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

// Parses the arguments after the program's name: the seven options of the help text, each exactly once and
// with a value, in any order. Returns an error text for anything else.
[[nodiscard]] std::variant<Notice, std::string> parseNotice(const std::vector<std::string>& arguments);

// Returns subtitle and message on one line each. Escapes special characters if the server interprets
// `markup`.
[[nodiscard]] std::string bodyText(const Notice& notice, bool markup);

[[nodiscard]] std::string updaterProgram(const Notice& notice);

}  // namespace companions
