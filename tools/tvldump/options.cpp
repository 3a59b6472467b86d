#include "tools/tvldump/options.h"

#include "tools/common/command_line.h"

namespace tools {

std::optional<Options> parseOptions(int argc, char** argv) {
  Options options;
  CommandLine line("tvldump");
  line.addFlag("help", options.help);
  line.addFlag("json", options.json);
  line.addFlag("lines", options.lines);
  const bool good = line.read(argc, argv, [&](const std::vector<std::string>& files) {
    options.files = files;
    if (options.json && options.lines) return line.complain("--json and --lines exclude each other");
    return options.help || !files.empty() || line.complain("give one file at least");
  });
  return good ? std::optional(options) : std::nullopt;
}

std::string helpText() {
  return R"(Usage: tvldump [--json | --lines] FILE ...

Prints usage record files. This is a development tool, not part of the agent.

Each item of a file stands on a line of its own, after the offset of its first byte. Of a damaged file all
that stands before the damage is printed, and then at which byte it stops making sense, and why. A FILE of
"-" is the standard input.

  --json   print an array with an object for each file: its name in "file", its "items", its "size" in
           bytes, and "damage", which is null or has an "offset" and a "reason"; a text that is no UTF-8
           comes in hexadecimal digits too, as in "nameHex"
  --lines  print a JSON object a line for each record: the "file", what its header says ("date",
           "identifier", "operatingSystem", "agentVersion"), the "offset" and "type" of the record, and
           its own members as with --json; and one of the type "file" behind the records of each file,
           with "size", "damage" (null, or the reason) and "damageOffset". For programs that query large
           amounts: the lines of many runs can be put one behind another, as in
             find uploads -name '*.dat' -print0 | xargs -0 tvldump --lines
  --help   show this text

Exit status: 0 every file is whole, 1 one is damaged, 2 wrong command line, or something can't be read or
written.
)";
}

}  // namespace tools
