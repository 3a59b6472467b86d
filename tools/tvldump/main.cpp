#include <algorithm>
#include <cstdio>
#include <iostream>
#include <memory>

#include "tools/common/escaped_text.h"
#include "tools/tvldump/input_file.h"
#include "tools/tvldump/json_lines_printer.h"
#include "tools/tvldump/json_printer.h"
#include "tools/tvldump/options.h"
#include "tools/tvldump/text_printer.h"

namespace {

enum Status { Whole = 0, Damaged = 1, Failed = 2 };

Status fail(const std::string& reason) {
  std::cout.flush();
  std::fprintf(stderr, "tvldump: %s\n", reason.c_str());
  return Failed;
}

Status written() {
  return std::cout.flush() ? Whole : fail("cannot write the output");
}

Status print(const std::string& path, tools::InputFile& file, tools::Printer& printer) {
  std::string reason;
  const auto bytes = file.read(path, reason);
  if (!bytes) return fail("cannot read " + tools::quotedText(path) + ": " + reason);
  return tools::printFile(path, *bytes, printer) ? Whole : Damaged;
}

std::unique_ptr<tools::Printer> printerFor(const tools::Options& options) {
  if (options.lines) return std::make_unique<tools::JsonLinesPrinter>(std::cout);
  if (options.json) return std::make_unique<tools::JsonPrinter>(std::cout);
  return std::make_unique<tools::TextPrinter>(std::cout);
}

Status printAll(const tools::Options& options) {
  const std::unique_ptr<tools::Printer> printer = printerFor(options);
  Status status = Whole;
  tools::InputFile file;
  printer->begin();
  for (const std::string& path : options.files) status = std::max(status, print(path, file, *printer));
  printer->end();
  return std::max(status, written());
}

}  // namespace

int main(int argc, char** argv) {
  std::ios::sync_with_stdio(false);
  const std::optional<tools::Options> options = tools::parseOptions(argc, argv);
  if (!options) return Failed;
  if (!options->help) return printAll(*options);
  std::cout << tools::helpText();
  return written();
}
