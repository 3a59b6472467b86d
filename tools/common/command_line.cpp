#include "tools/common/command_line.h"

#include <getopt.h>

#include <cstdio>
#include <utility>

namespace tools {

void CommandLine::addFlag(const char* name, bool& set) {
  options_.push_back({name, false, [&set](const std::string&) { return set = true; }});
}

void CommandLine::addValue(const char* name, Take take) {
  options_.push_back({name, true, std::move(take)});
}

bool CommandLine::read(int argc, char** argv, const TakeAll& takeArguments) {
  if (readOptions(argc, argv) && takeArguments({argv + optind, argv + argc})) return true;
  std::fprintf(stderr, "see %s --help\n", tool_.c_str());
  return false;
}

bool CommandLine::readOptions(int argc, char** argv) const {
  std::vector<option> known;
  for (const Option& each : options_)
    known.push_back({each.name, each.hasValue ? required_argument : no_argument, nullptr, 0});
  known.push_back({nullptr, 0, nullptr, 0});
  int index = 0;
  for (int found = 0; (found = ::getopt_long(argc, argv, "", known.data(), &index)) != -1;) {
    if (found != 0) return false;  // getopt_long has printed the error
    const char* const value = options_[static_cast<std::size_t>(index)].hasValue ? optarg : "";
    if (!options_[static_cast<std::size_t>(index)].take(value)) return false;
  }
  return true;
}

bool CommandLine::complain(const std::string& text) const {
  std::fprintf(stderr, "%s: %s\n", tool_.c_str(), text.c_str());
  return false;
}

}  // namespace tools
