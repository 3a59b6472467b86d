#include "tools/fleet/options.h"

#include <charconv>
#include <limits>

#include "tools/common/command_line.h"
#include "tools/fleet/requests.h"

namespace fleet {
namespace {

// The capacity of the 32-bit counters per second, and far more than any real number of installations.
constexpr std::int64_t maxInstallations = 1'000'000'000;
constexpr std::int64_t maxFileSize = std::int64_t{256} << 20;

constexpr std::string_view weightBounds = "; a weight is 0 or from 0.000001 to 1000000000";

std::optional<std::int64_t> numberIn(const std::string& text, std::int64_t min, std::int64_t max) {
  std::int64_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  const bool good = error == std::errc() && stop == end && number >= min && number <= max;
  return good ? std::optional(number) : std::nullopt;
}

// Accepts "40" or "12.5".
std::optional<double> percentIn(const std::string& text) {
  double number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  const bool good = error == std::errc() && stop == end && number >= 0 && number <= 100;
  return good ? std::optional(number) : std::nullopt;
}

// Returns a handler for an integer option with bounds.
template <typename Number>
tools::CommandLine::Take number(const tools::CommandLine& line, std::string name, std::int64_t min,
                                std::int64_t max, Number& target) {
  return [&line, name = std::move(name), min, max, &target](const std::string& text) {
    const auto value = numberIn(text, min, max);
    if (!value)
      return line.complain(name + " must be a whole number from " + std::to_string(min) + " to " +
                           std::to_string(max));
    target = static_cast<Number>(*value);
    return true;
  };
}

tools::CommandLine::Take path(const tools::CommandLine& line, std::string name, std::string& target) {
  return [&line, name = std::move(name), &target](const std::string& text) {
    target = text;
    return !text.empty() || line.complain(name + " must not be empty");
  };
}

void addFleet(tools::CommandLine& line, Settings& settings, Description& description) {
  line.addValue("installations",
                number(line, "--installations", 1, maxInstallations, settings.installations));
  line.addValue("seed", number(line, "--seed", 0, std::numeric_limits<std::int64_t>::max(), settings.seed));
  line.addValue("delay", number(line, "--delay", 0, day, settings.delay));
  line.addValue("launches", [&](const std::string& text) {
    const auto mix = launchesOf(text);
    if (!mix)
      return line.complain(
          "--launches must be uniform, office, power-cut or a mix such as office=3,uniform=1" +
          std::string(weightBounds));
    settings.launches = *mix;
    description.launches = text;
    return true;
  });
  line.addValue("zones", [&](const std::string& text) {
    const auto zones = zonesOf(text);
    if (!zones)
      return line.complain("--zones must be utc, world or a mix such as +01:00=3,+05:30=1" +
                           std::string(weightBounds));
    settings.zones = *zones;
    description.zones = text;
    return true;
  });
  line.addValue("asleep", [&](const std::string& text) {
    const auto percent = percentIn(text);
    if (!percent) return line.complain("--asleep must be a percentage from 0 to 100");
    settings.sleeping = *percent / 100;
    return true;
  });
}

}  // namespace

std::optional<Options> parseOptions(int argc, char** argv) {
  Options options;
  options.description = {
      .launches = "uniform", .zones = "utc", .fileSize = typicalFileSize(), .host = "www.tovalin.example"};
  tools::CommandLine line("fleet");
  line.addFlag("help", options.help);
  line.addFlag("json", options.json);
  line.addValue("svg", path(line, "--svg", options.picture));
  line.addValue("plan", path(line, "--plan", options.plan));
  line.addValue("file-bytes", number(line, "--file-bytes", 0, maxFileSize, options.description.fileSize));
  addFleet(line, options.settings, options.description);
  const bool good = line.read(argc, argv, [&](const std::vector<std::string>& arguments) {
    if (!options.plan.empty() && options.plan == options.picture)
      return line.complain("--svg and --plan name the same file");
    return arguments.empty() || line.complain("unexpected argument; only options are accepted");
  });
  return good ? std::optional(options) : std::nullopt;
}

std::string helpText() {
  return R"(Usage: fleet [OPTION]...

Simulates the requests of many installations in 24 hours, beginning at noon UTC. Uses the agent's own function to decide
whether an installation uploads at a tick of its timer.
This is a development tool, not part of the agent.

  --installations N  1 to 1000000000 (default 10000000)
  --launches MIX     launch times (default uniform), or a weighted mix such as office=3,uniform=1:
                       uniform    once a day, at a random time while the machine is awake; until the next launch
                       office     from about 08:45 to about 17:45
                       power-cut  once, 0.5 to 2 minutes after power returns at 20:00; runs from then on
                     a weight is 0 or from 0.000001 to 1000000000
  --zones MIX        utc (default); world, a rough share of the population per offset; or weighted offsets such as
                     +01:00=3,+05:30=1
  --asleep PERCENT   share of machines that sleep at night, from about 23:30 to about 07:15 (default 0)
  --delay SECONDS    simulate a changed rule: delay each pass after a date change by a random time below this
                     (default 0, the agent's rule)
  --file-bytes N     size of a day's file (default )" +
         std::to_string(typicalFileSize()) + R"(: one start, one end, 4 device events and 40 transfers)
  --seed N           seed of the random numbers (default 1)
  --json             print one JSON object: the settings, and for "uploads", "busiestHour", "versionFetches" and
                     "beacons" the "total", and for a second the "mean", "percentile99" and "peak" with its "peakAt"
  --svg FILE         also write a diagram of the day
  --plan FILE        also write one JSON object per line for each installation: its "offset" from UTC, and its "runs",
                     each "[launch,end,[[asleep,awake],...]]", in seconds of local time since the midnight that
                     precedes the first counted second in UTC
  --help             show this text

Times of day are normally distributed with standard deviations of 35 minutes (08:45), 60 (17:45 and 23:30) and 50 (07:15),
limited to 3.5 deviations. Every upload succeeds. Daylight saving time does not begin or end.

Exit status: 0 success, 2 wrong command line or a write error.
)";
}

}  // namespace fleet
