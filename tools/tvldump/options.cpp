#include "tools/tvldump/options.h"

#include "tools/common/command_line.h"

namespace tools {

std::optional<Options> parseOptions(int argc, char** argv) {
  Options options;
  CommandLine line("tvldump");
  line.addFlag("help", options.help);
  line.addFlag("json", options.json);
  const bool good = line.read(argc, argv, [&](const std::vector<std::string>& files) {
    options.files = files;
    return options.help || !files.empty() || line.complain("give one file at least");
  });
  return good ? std::optional(options) : std::nullopt;
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
