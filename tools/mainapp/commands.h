#pragma once

#include <span>
#include <string>
#include <string_view>

namespace tools {

inline constexpr const char* kNotificationPipe = "/tmp/KMNOTIPIPE";

enum class Outcome { Continue, Quit };

// A command on standard input.
struct Command {
  std::string_view name;
  std::string_view argument;  // as shown in the help text; empty for none
  std::string_view purpose;
  Outcome (*run)(const std::string& argument);
};

[[nodiscard]] std::span<const Command> commands();

// Returns the help text of the commands, one line each.
[[nodiscard]] std::string commandHelp();

// Runs the command in `line`: a name, a space and the rest as its argument, verbatim. Prints results to
// standard output and errors to standard error. An empty line does nothing.
[[nodiscard]] Outcome runCommand(const std::string& line);

// Writes `text` to the notification pipe and prints the result. Returns false on failure.
bool sendAndReport(const std::string& text);

}  // namespace tools
