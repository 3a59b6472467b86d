#include "tools/productserver/options.h"

#include <charconv>
#include <string_view>
#include <system_error>

#include "tools/common/command_line.h"
#include "tools/common/escaped_text.h"

namespace tools {
namespace {

bool isPort(std::string_view text, int& port) {
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, port);
  return error == std::errc() && rest == end && port >= 0 && port <= 65535;
}

bool takeFault(Options& options, const CommandLine& line, const std::string& value) {
  const std::size_t sign = value.rfind('=');
  if (!value.starts_with('/') || sign == value.npos)
    return line.complain("--fault: " + quotedText(value) + " does not have the form /PATH=NAME");
  const std::string name = value.substr(sign + 1);
  const std::optional<FaultOrder> order = parseFaultOrder(name);
  if (!order) return line.complain("--fault: unknown fault " + quotedText(name));
  options.faults.emplace_back(value.substr(0, sign), *order);
  return true;
}

void addName(CommandLine& line, const char* name, std::string& target) {
  line.addValue(name, [&line, name, &target](const std::string& value) {
    target = value;
    return !value.empty() || line.complain(std::string("--") + name + ": the name is empty");
  });
}

}  // namespace

std::optional<Options> parseOptions(int argc, char** argv) {
  Options options;
  CommandLine line("productserver");
  line.addFlag("help", options.help);
  line.addValue("port", [&](const std::string& value) {
    return isPort(value, options.port) ||
           line.complain("--port: " + quotedText(value) + " is not a port number");
  });
  addName(line, "port-file", options.portFile);
  addName(line, "uploads", options.uploads);
  line.addValue("version-list", [&](const std::string& value) {
    options.version = value;
    return true;
  });
  line.addValue("fault", [&](const std::string& value) { return takeFault(options, line, value); });
  const bool good = line.read(argc, argv, [&](const std::vector<std::string>& arguments) {
    if (options.help) return true;
    if (arguments.size() != 1) return line.complain("expected one folder to serve");
    options.folder = arguments[0];
    return true;
  });
  return good ? std::optional(options) : std::nullopt;
}

}  // namespace tools
