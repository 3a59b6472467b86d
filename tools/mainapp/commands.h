#pragma once

#include <span>
#include <string>
#include <string_view>

namespace tools {

inline constexpr const char* kNotificationPipe = "/tmp/KMNOTIPIPE";

enum class Outcome { Continue, Quit };

// One command of the standard input: its name, what follows the name, and what it does.
struct Command {
  std::string_view name;
  std::string_view argument;  // as the help shows it; empty for a command that takes none
  std::string_view purpose;
  Outcome (*run)(const std::string& argument);
};

[[nodiscard]] std::span<const Command> commands();

// The help's part on the commands, a line each.
[[nodiscard]] std::string commandHelp();

// Runs the command in `line`, a name and, after one blank, its argument as it stands. Results go to standard
// output, failures to standard error; an empty line does nothing.
[[nodiscard]] Outcome runCommand(const std::string& line);

// Writes `text` into the notification pipe and reports the outcome; false when that failed.
bool sendAndReport(const std::string& text);

}  // namespace tools
