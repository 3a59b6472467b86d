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

constexpr std::array<option, 4> kOptions = {{{"help", no_argument, nullptr, 'h'},
                                             {"port", required_argument, nullptr, 'p'},
                                             {"port-file", required_argument, nullptr, 'f'},
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

bool takeOption(Options& options, int letter) {
  switch (letter) {
    case 'h':
      options.help = true;
      return true;
    case 'p':
      return takePort(options, optarg);
    case 'f':
      return takePortFile(options, optarg);
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

std::string helpText() {
  return "Usage: productserver [--port N] [--port-file FILE] FOLDER\n"
         "\n"
         "A stand-in for the product server. This is a development tool, not part of the agent.\n"
         "\n"
         "It serves the files of FOLDER over HTTP on 127.0.0.1 alone, and prints a line for each request: "
         "the time,\n"
         "the method, the path with its query, the status and the bytes of the answer's body. It ends at "
         "SIGINT or\n"
         "SIGTERM.\n"
         "\n"
         "  --port N          the port; 0 takes any free one (8090 when not given)\n"
         "  --port-file FILE  write the port into FILE once the server listens\n"
         "  --help            show this text\n"
         "\n"
         "Exit status: 0 ended by a signal, 1 failure, 2 wrong command line.\n";
}

}  // namespace tools
