#include "tools/mainapp/options.h"

#include <getopt.h>

#include <array>
#include <cstdio>

#include "tools/common/escaped_text.h"
#include "tools/common/seconds_argument.h"
#include "tools/mainapp/commands.h"
#include "tools/mainapp/message_splitter.h"

namespace tools {
namespace {

constexpr std::array<option, 5> kOptions = {{{"help", no_argument, nullptr, 'h'},
                                             {"send", required_argument, nullptr, 's'},
                                             {"until", required_argument, nullptr, 'u'},
                                             {"timeout", required_argument, nullptr, 't'},
                                             {nullptr, 0, nullptr, 0}}};

bool complain(const std::string& text) {
  std::fprintf(stderr, "mainapp: %s\n", text.c_str());
  return false;
}

bool takeSend(Options& options, const std::string& value) {
  if (value.empty()) return complain("--send: the text is empty");
  options.sends.push_back(value);
  return true;
}

bool takeUntil(Options& options, const std::string& value) {
  if (!isKnownMessage(value))
    return complain("--until: " + quotedText(value) + " is no message of the agent");
  options.until = value;
  return true;
}

bool takeTimeout(Options& options, const std::string& value) {
  options.timeout = secondsArgument(value);
  return options.timeout || complain("--timeout: " + quotedText(value) + " is no number of seconds");
}

bool takeOption(Options& options, int letter) {
  switch (letter) {
    case 'h':
      options.help = true;
      return true;
    case 's':
      return takeSend(options, optarg);
    case 'u':
      return takeUntil(options, optarg);
    case 't':
      return takeTimeout(options, optarg);
    default:
      return false;  // getopt_long has said why
  }
}

bool fitTogether(const Options& options) {
  if (options.sends.empty() || (!options.until && !options.timeout)) return true;
  return complain("--send sends and ends; it does not go with --until and --timeout");
}

}  // namespace

std::optional<Options> parseOptions(int argc, char** argv) {
  Options options;
  bool good = true;
  int letter = 0;
  while (good && (letter = ::getopt_long(argc, argv, "", kOptions.data(), nullptr)) != -1) {
    good = takeOption(options, letter);
  }
  if (good && optind < argc) good = complain("unexpected argument " + quotedText(argv[optind]));
  if (good && fitTogether(options)) return options;
  std::fputs("mainapp --help shows how it is used\n", stderr);
  return std::nullopt;
}

std::string helpText() {
  return "Usage: mainapp [--until MESSAGE] [--timeout SECONDS]\n"
         "       mainapp --send TEXT [--send TEXT ...]\n"
         "\n"
         "A stand-in for the main application. This is a development tool, not part of the agent.\n"
         "\n"
         "It makes the command pipe /tmp/KMPIPE, prints each message that the agent writes there with the "
         "time it\n"
         "was read, and takes commands from its standard input. It ends at \"quit\", SIGINT or SIGTERM.\n"
         "\n"
         "  --send TEXT        write TEXT into the notification pipe /tmp/KMNOTIPIPE and end; may be "
         "repeated\n"
         "  --until MESSAGE    end with status 0 once MESSAGE was read: -ton, -toff, -m or -u\n"
         "  --timeout SECONDS  end with status 3 after this time\n"
         "  --help             show this text\n"
         "\n"
         "Commands of the standard input, a line each:\n" +
         commandHelp() +
         "\n"
         "Exit status: 0 ended as asked, 1 failure or ended before the message of --until, 2 wrong command "
         "line,\n"
         "3 time over.\n";
}

}  // namespace tools
