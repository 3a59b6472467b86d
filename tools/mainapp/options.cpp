#include "tools/mainapp/options.h"

#include "tools/common/command_line.h"
#include "tools/common/escaped_text.h"
#include "tools/common/seconds_argument.h"
#include "tools/mainapp/commands.h"
#include "tools/mainapp/message_splitter.h"

namespace tools {

std::optional<Options> parseOptions(int argc, char** argv) {
  Options options;
  CommandLine line("mainapp");
  line.addFlag("help", options.help);
  line.addValue("send", [&](const std::string& value) {
    options.sends.push_back(value);
    return !value.empty() || line.complain("--send: the text is empty");
  });
  line.addValue("until", [&](const std::string& value) {
    options.until = value;
    return isKnownMessage(value) ||
           line.complain("--until: " + quotedText(value) + " is not a message of the agent");
  });
  line.addValue("timeout", [&](const std::string& value) {
    options.timeout = secondsArgument(value);
    return options.timeout ||
           line.complain("--timeout: " + quotedText(value) + " is not a number of seconds");
  });
  const bool good = line.read(argc, argv, [&](const std::vector<std::string>& arguments) {
    if (!arguments.empty()) return line.complain("unexpected argument " + quotedText(arguments[0]));
    if (options.sends.empty() || (!options.until && !options.timeout)) return true;
    return line.complain("--send excludes --until and --timeout");
  });
  return good ? std::optional(options) : std::nullopt;
}

std::string helpText() {
  return "Usage: mainapp [--until MESSAGE] [--timeout SECONDS]\n"
         "       mainapp --send TEXT [--send TEXT ...]\n"
         "\n"
         "A stand-in for the main application. This is a development tool, not part of the agent.\n"
         "\n"
         "It creates the command pipe /tmp/KMPIPE, prints each message of the agent with the time at which "
         "it\n"
         "was read, and reads commands from standard input. It exits at \"quit\", SIGINT or SIGTERM.\n"
         "\n"
         "  --send TEXT        write TEXT to the notification pipe /tmp/KMNOTIPIPE and exit; may be "
         "repeated\n"
         "  --until MESSAGE    exit with status 0 after reading MESSAGE: -ton, -toff, -m or -u\n"
         "  --timeout SECONDS  exit with status 3 after this time\n"
         "  --help             show this text\n"
         "\n"
         "Commands on standard input, one per line:\n" +
         commandHelp() +
         "\n"
         "Exit status: 0 success, 1 failure, or ended before the message of --until, 2 wrong command line,\n"
         "3 timeout.\n";
}

}  // namespace tools
