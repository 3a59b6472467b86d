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
    return options.help || !files.empty() || line.complain("expected at least one file");
  });
  return good ? std::optional(options) : std::nullopt;
}

std::string helpText() {
  return R"(Usage: tvldump [--json | --lines] FILE ...

Prints usage record files. This is a development tool, not part of the agent.

Prints one line per item, beginning with the offset of its first byte. For a damaged file, prints the items
before the damage, then the offset of the first corrupt byte and the reason. "-" as FILE is standard input.

  --json   print an array with an object for each file: its name in "file", its "items", its "size" in
           bytes, and "damage", which is null or has an "offset" and a "reason"; a text that is not UTF-8
           is also given in hexadecimal, as in "nameHex"
  --lines  print one JSON object per line for each record: the "file", the header's "date",
           "identifier", "operatingSystem" and "agentVersion", the record's "offset" and "type", and
           its members as with --json; and after the records of each file one object of type "file"
           with "size", "damage" (null, or the reason) and "damageOffset". Outputs of several runs can
           be concatenated, for queries over large amounts of data, as in
             find uploads -name '*.dat' -print0 | xargs -0 tvldump --lines
  --help   show this text

Exit status: 0 no file is damaged, 1 a file is damaged, 2 wrong command line, or a read or write error.
)";
}

}  // namespace tools
