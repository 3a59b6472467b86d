#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <variant>

#include "platform/linux/helpers/bundle_program.h"
#include "platform/linux/helpers/helper_program.h"
#include "platform/linux/helpers/open_request.h"

namespace {

constexpr char usage[] =
    "Usage: open -a NAME.app [--args ARGUMENT...]\n"
    "       open NAME.app\n"
    "       open URL|FILE\n"
    "\n"
    "Starts the program of a bundle, NAME.app/Contents/MacOS/NAME, with the arguments, or hands an address "
    "or a\n"
    "file to xdg-open. Does not wait for them to end.\n";

int start(const helpers::Arguments& argv) {
  const helpers::Child child = helpers::startDetached(argv, helpers::Output::Inherited);
  if (child.error != 0) return helpers::fail("open", argv[0] + ": " + std::strerror(child.error));
  return helpers::Done;
}

int startProgramOf(const helpers::OpenBundle& bundle) {
  const helpers::BundleProgram program = helpers::findBundleProgram(bundle.path);
  if (!program.problem.empty()) return helpers::fail("open", program.problem);
  helpers::Arguments argv{program.path};
  argv.insert(argv.end(), bundle.arguments.begin(), bundle.arguments.end());
  return start(argv);
}

int openWithDesktop(const std::string& target) {
  return start({"xdg-open", target});
}

int openFileWithDesktop(const std::string& path) {
  if (::access(path.c_str(), F_OK) != 0) return helpers::fail("open", path + ": " + std::strerror(errno));
  return openWithDesktop(path);
}

}  // namespace

int main(int argc, char** argv) {
  helpers::prepareEnvironment();
  const helpers::OpenRequest request = helpers::parseOpenRequest({argv + 1, argv + argc});
  if (const auto* bundle = std::get_if<helpers::OpenBundle>(&request)) return startProgramOf(*bundle);
  if (const auto* url = std::get_if<helpers::OpenUrl>(&request)) return openWithDesktop(url->url);
  if (const auto* file = std::get_if<helpers::OpenFile>(&request)) return openFileWithDesktop(file->path);
  if (const auto* refusal = std::get_if<helpers::Refusal>(&request)) {
    return helpers::refuse("open", refusal->reason);
  }
  return helpers::showUsage(usage);
}
