#include "tools/tvldump/options.h"

#include <getopt.h>

#include <array>
#include <cstdio>

namespace tools {
namespace {

constexpr std::array<option, 3> kOptions = {
    {{"help", no_argument, nullptr, 'h'}, {"json", no_argument, nullptr, 'j'}, {nullptr, 0, nullptr, 0}}};

bool takeOption(Options& options, int letter) {
  options.help = options.help || letter == 'h';
  options.json = options.json || letter == 'j';
  return letter == 'h' || letter == 'j';  // else getopt_long has said why
}

bool takeFiles(Options& options, int argc, char** argv) {
  options.files.assign(argv + optind, argv + argc);
  if (options.help || !options.files.empty()) return true;
  std::fputs("tvldump: give one file at least\n", stderr);
  return false;
}

}  // namespace

std::optional<Options> parseOptions(int argc, char** argv) {
  Options options;
  bool good = true;
  int letter = 0;
  while (good && (letter = ::getopt_long(argc, argv, "", kOptions.data(), nullptr)) != -1) {
    good = takeOption(options, letter);
  }
  if (good && takeFiles(options, argc, argv)) return options;
  std::fputs("tvldump --help shows how it is used\n", stderr);
  return std::nullopt;
}

std::string helpText() {
  return "Usage: tvldump [--json] FILE ...\n"
         "\n"
         "Prints usage record files. This is a development tool, not part of the agent.\n"
         "\n"
         "Each item of a file stands on a line of its own, after the offset of its first byte. Of a damaged "
         "file all\n"
         "that stands before the damage is printed, and then at which byte it stops making sense, and why. A "
         "FILE of\n"
         "\"-\" is the standard input.\n"
         "\n"
         "  --json  print an array with an object for each file: its name in \"file\", its \"items\", its "
         "\"size\" in\n"
         "          bytes, and \"damage\", which is null or has an \"offset\" and a \"reason\"; a text that "
         "is "
         "no UTF-8\n"
         "          comes in hexadecimal digits too, as in \"nameHex\"\n"
         "  --help  show this text\n"
         "\n"
         "Exit status: 0 every file is whole, 1 one is damaged, 2 wrong command line, or something can't be "
         "read or\n"
         "written.\n";
}

}  // namespace tools
