#include "tools/mainapp/commands.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <optional>

#include "tools/common/clock_text.h"
#include "tools/common/escaped_text.h"
#include "tools/mainapp/collect_data.h"
#include "tools/mainapp/notification_sender.h"

namespace tools {
namespace {

Outcome runSend(const std::string& argument) {
  sendAndReport(argument);
  return Outcome::Continue;
}

void complain(const std::string& text) {
  std::fprintf(stderr, "mainapp: %s\n", text.c_str());
}

// Sends the message that shows or hides a notice.
Outcome switchNotice(const std::string& argument, const char* on, const char* off) {
  if (argument != "on" && argument != "off") {
    complain("a notice is switched on or off, not " + quotedText(argument));
    return Outcome::Continue;
  }
  sendAndReport(argument == "on" ? on : off);
  return Outcome::Continue;
}

Outcome runAccess(const std::string& argument) {
  return switchNotice(argument, "-non", "-noff");
}

Outcome runLoading(const std::string& argument) {
  return switchNotice(argument, "-neon", "-neoff");
}

// Sends the message built from a command's argument, or prints an error if there is none.
Outcome report(const std::optional<std::string>& message, const std::string& words) {
  if (!message) {
    complain("unknown report: " + quotedText(words));
  } else {
    sendAndReport(*message);
  }
  return Outcome::Continue;
}

Outcome runDevice(const std::string& argument) {
  return report(deviceEventMessage(argument), argument);
}

Outcome runTransfer(const std::string& argument) {
  return report(transferMessage(argument), argument);
}

Outcome runHelp(const std::string&) {
  std::fputs(commandHelp().c_str(), stdout);
  return Outcome::Continue;
}

Outcome runQuit(const std::string&) {
  return Outcome::Quit;
}

constexpr std::array kCommands = {
    Command{"send", "TEXT", "write TEXT to the notification pipe", runSend},
    Command{"access", "on|off", "show or hide the device-access notice", runAccess},
    Command{"loading", "on|off", "show or hide the loading notice", runLoading},
    Command{"device", "3|4 [NAME]", "report a device event", runDevice},
    Command{"transfer", "KIND SIZE [NAME]", "report a transfer; KIND is 1 or 2", runTransfer},
    Command{"help", "", "show the commands", runHelp},
    Command{"quit", "", "exit", runQuit},
};

std::string helpLine(const Command& command) {
  constexpr std::size_t kColumn = 28;
  std::string line = "  " + std::string(command.name);
  if (!command.argument.empty()) line += " " + std::string(command.argument);
  line.resize(std::max(line.size() + 1, kColumn), ' ');
  return line + std::string(command.purpose) + "\n";
}

}  // namespace

std::span<const Command> commands() {
  return kCommands;
}

std::string commandHelp() {
  std::string text;
  for (const Command& command : commands()) text += helpLine(command);
  return text;
}

Outcome runCommand(const std::string& line) {
  if (line.empty()) return Outcome::Continue;
  const std::size_t blank = line.find(' ');
  const std::string name = line.substr(0, blank);
  const std::string argument = blank == std::string::npos ? "" : line.substr(blank + 1);
  const auto found = std::find_if(kCommands.begin(), kCommands.end(),
                                  [&](const Command& command) { return command.name == name; });
  if (found == kCommands.end()) {
    complain("unknown command " + quotedText(name) + "; \"help\" lists the commands");
    return Outcome::Continue;
  }
  if (argument.empty() != found->argument.empty()) {
    complain(argument.empty() ? name + " takes an argument: " + std::string(found->argument)
                              : name + " takes no argument");
    return Outcome::Continue;
  }
  return found->run(argument);
}

bool sendAndReport(const std::string& text) {
  const std::optional<std::string> reason = sendNotification(kNotificationPipe, text);
  if (reason) {
    complain("cannot send " + quotedText(text) + ": " + *reason);
    return false;
  }
  const std::string now = clockText(std::chrono::system_clock::now());
  std::printf("%s  sent %s\n", now.c_str(), quotedText(text).c_str());
  return true;
}

}  // namespace tools
