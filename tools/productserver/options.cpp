#include "tools/productserver/options.h"

#include <getopt.h>

#include <array>
#include <charconv>
#include <cstdio>
#include <string_view>
#include <system_error>

#include "tools/common/escaped_text.h"

namespace tools {
namespace {

constexpr std::array<option, 7> kOptions = {{{"help", no_argument, nullptr, 'h'},
                                             {"port", required_argument, nullptr, 'p'},
                                             {"port-file", required_argument, nullptr, 'f'},
                                             {"uploads", required_argument, nullptr, 'u'},
                                             {"version-list", required_argument, nullptr, 'v'},
                                             {"fault", required_argument, nullptr, 'x'},
                                             {nullptr, 0, nullptr, 0}}};

bool complain(const std::string& text) {
  std::fprintf(stderr, "productserver: %s\n", text.c_str());
  return false;
}

bool takePort(Options& options, std::string_view value) {
  const char* const end = value.data() + value.size();
  const auto [rest, error] = std::from_chars(value.data(), end, options.port);
  if (error == std::errc() && rest == end && options.port >= 0 && options.port <= 65535) return true;
  return complain("--port: " + quotedText(value) + " is no port number");
}

bool takePortFile(Options& options, const std::string& value) {
  options.portFile = value;
  return !value.empty() || complain("--port-file: the name is empty");
}

bool takeUploads(Options& options, const std::string& value) {
  options.uploads = value;
  return !value.empty() || complain("--uploads: the name is empty");
}

bool takeVersion(Options& options, const std::string& value) {
  options.version = value;
  return true;
}

bool takeFault(Options& options, const std::string& value) {
  const std::size_t sign = value.rfind('=');
  if (!value.starts_with('/') || sign == value.npos)
    return complain("--fault: " + quotedText(value) + " has not the form /PATH=NAME");
  const std::string name = value.substr(sign + 1);
  const std::optional<FaultOrder> order = parseFaultOrder(name);
  if (!order) return complain("--fault: there is no fault " + quotedText(name));
  options.faults.emplace_back(value.substr(0, sign), *order);
  return true;
}

bool takeOption(Options& options, int letter) {
  switch (letter) {
    case 'h':
      options.help = true;
      return true;
    case 'p':
      return takePort(options, optarg);
    case 'f':
      return takePortFile(options, optarg);
    case 'u':
      return takeUploads(options, optarg);
    case 'v':
      return takeVersion(options, optarg);
    case 'x':
      return takeFault(options, optarg);
    default:
      return false;  // getopt_long has said why
  }
}

bool takeFolder(Options& options, int argc, char** argv) {
  if (options.help) return true;
  if (optind + 1 != argc) return complain("give one folder to serve");
  options.folder = argv[optind];
  return true;
}

}  // namespace

std::optional<Options> parseOptions(int argc, char** argv) {
  Options options;
  bool good = true;
  int letter = 0;
  while (good && (letter = ::getopt_long(argc, argv, "", kOptions.data(), nullptr)) != -1) {
    good = takeOption(options, letter);
  }
  if (good && takeFolder(options, argc, argv)) return options;
  std::fputs("productserver --help shows how it is used\n", stderr);
  return std::nullopt;
}

}  // namespace tools
