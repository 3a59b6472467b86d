#include <cstdio>
#include <fstream>
#include <iostream>

#include "tools/common/escaped_text.h"
#include "tools/fleet/options.h"
#include "tools/fleet/picture.h"
#include "tools/fleet/plan_lines.h"

namespace {

enum Status { Done = 0, Failed = 2 };

Status fail(const std::string& reason) {
  std::fprintf(stderr, "fleet: %s\n", reason.c_str());
  return Failed;
}

Status cannotWrite(const std::string& path) {
  return fail("cannot write " + tools::quotedText(path));
}

// Writes each installation's plan where one is asked for.
Status simulateInto(fleet::FleetDay& result, const fleet::Options& options) {
  if (options.plan.empty()) {
    result = fleet::simulate(options.settings);
    return Done;
  }
  std::ofstream plan(options.plan);
  result = fleet::simulate(options.settings, [&](fleet::Seconds offset, const std::vector<fleet::Run>& runs) {
    plan << fleet::planLine(offset, runs);
  });
  return plan.flush() ? Done : cannotWrite(options.plan);
}

Status draw(const fleet::FleetDay& result, const fleet::Options& options) {
  if (options.picture.empty()) return Done;
  std::ofstream file(options.picture);
  file << fleet::picture(static_cast<std::uint64_t>(options.settings.installations),
                         fleet::captionOf(options.settings, options.description), result);
  return file.flush() ? Done : cannotWrite(options.picture);
}

Status run(const fleet::Options& options) {
  fleet::FleetDay result;
  if (simulateInto(result, options) != Done || draw(result, options) != Done) return Failed;
  std::cout << (options.json ? fleet::jsonReport : fleet::textReport)(options.settings, options.description,
                                                                      result);
  return std::cout.flush() ? Done : fail("cannot write the output");
}

}  // namespace

int main(int argc, char** argv) {
  const auto options = fleet::parseOptions(argc, argv);
  if (!options) return Failed;
  if (options->help) return std::fputs(fleet::helpText().c_str(), stdout) < 0 ? Failed : Done;
  return run(*options);
}
