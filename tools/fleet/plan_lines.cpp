#include "tools/fleet/plan_lines.h"

namespace fleet {
namespace {

template <typename Pieces, typename TextOf>
std::string listOf(const Pieces& pieces, TextOf textOf) {
  std::string text = "[";
  for (const auto& piece : pieces) text.append(text.size() > 1 ? "," : "").append(textOf(piece));
  return text + "]";
}

std::string periodText(const SleepPeriod& period) {
  return "[" + std::to_string(period.from) + "," + std::to_string(period.to) + "]";
}

std::string runText(const Run& run) {
  return "[" + std::to_string(run.launch) + "," + std::to_string(run.end) + "," +
         listOf(run.sleepPeriods, periodText) + "]";
}

}  // namespace

std::string planLine(Seconds offset, const std::vector<Run>& runs) {
  return "{\"offset\":" + std::to_string(offset) + ",\"runs\":" + listOf(runs, runText) + "}\n";
}

}  // namespace fleet
