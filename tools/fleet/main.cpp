#include <cerrno>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <system_error>

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
  return fail("cannot write " + tools::quotedText(path) + ": " + std::generic_category().message(errno));
}

// Called before the simulation, which may take minutes, so that an error is reported early.
Status open(std::ofstream& file, const std::string& path) {
  if (path.empty()) return Done;
  file.open(path);
  return file ? Done : cannotWrite(path);
}

Status finish(std::ofstream& file, const std::string& path) {
  return path.empty() || file.flush() ? Done : cannotWrite(path);
}

Status written() {
  return std::cout.flush() ? Done : fail("cannot write the output");
}

// Also writes each installation's plan if the option is set.
Status simulateInto(fleet::FleetDay& result, const fleet::Options& options, std::ofstream& plan) {
  if (options.plan.empty()) {
    result = fleet::simulate(options.settings);
    return Done;
  }
  result = fleet::simulate(options.settings, [&](fleet::Seconds offset, const std::vector<fleet::Run>& runs) {
    plan << fleet::planLine(offset, runs);
  });
  return finish(plan, options.plan);
}

Status draw(const fleet::FleetDay& result, const fleet::Options& options, std::ofstream& file) {
  if (options.picture.empty()) return Done;
  file << fleet::picture(static_cast<std::uint64_t>(options.settings.installations),
                         fleet::captionOf(options.settings, options.description), result);
  return finish(file, options.picture);
}

Status run(const fleet::Options& options) {
  std::ofstream plan, picture;
  fleet::FleetDay result;
  if (open(plan, options.plan) != Done || open(picture, options.picture) != Done) return Failed;
  if (simulateInto(result, options, plan) != Done || draw(result, options, picture) != Done) return Failed;
  std::cout << (options.json ? fleet::jsonReport : fleet::textReport)(options.settings, options.description,
                                                                      result);
  return written();
}

}  // namespace

int main(int argc, char** argv) {
  const auto options = fleet::parseOptions(argc, argv);
  if (!options) return Failed;
  if (!options->help) return run(*options);
  std::cout << fleet::helpText();
  return written();
}
