#include "tools/fleet/report.h"

#include <array>
#include <cmath>
#include <cstdarg>
#include <cstdio>

#include "tools/common/json_text.h"
#include "tools/fleet/requests.h"

namespace fleet {
namespace {

constexpr std::uint64_t beaconsPerLaunch = 2;

// The result is cut to 511 characters; the arguments are numbers and short texts.
[[gnu::format(printf, 1, 2)]] std::string formatted(const char* format, ...) {
  std::array<char, 512> text{};
  std::va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text.data(), text.size(), format, arguments);
  va_end(arguments);
  return text.data();
}

std::string formatMean(double mean) {
  return mean < 100 ? formatted("%.1f", mean) : grouped(static_cast<std::uint64_t>(std::llround(mean)));
}

Rate times(Rate rate, std::uint64_t factor) {
  const auto narrow = static_cast<std::uint32_t>(factor);
  rate.total *= factor;
  rate.mean *= static_cast<double>(factor);
  rate.percentile *= narrow;
  rate.peak *= narrow;
  return rate;
}

std::string rowOf(const std::string& name, const Rate& rate) {
  return formatted("%-36s %14s %12s %14s %12s   %s\n", name.c_str(), grouped(rate.total).c_str(),
                   formatMean(rate.mean).c_str(), grouped(rate.percentile).c_str(),
                   grouped(rate.peak).c_str(), clockText(rate.peakAt).c_str());
}

std::string bytesText(double bytes) {
  constexpr std::array units{"B", "kB", "MB", "GB", "TB", "PB"};
  std::size_t unit = 0;
  for (; bytes >= 1000 && unit + 1 < units.size(); ++unit) bytes /= 1000;
  return formatted("%.3g %s", bytes, units.at(unit));
}

struct Bytes {
  std::size_t upload = 0;
  std::size_t launch = 0;

  explicit Bytes(const Description& description)
      : upload(uploadSize(description.host, description.fileSize)),
        launch(versionFetchHead(description.host).size() + beaconsPerLaunch * measuredBeaconSize) {}
};

std::string jsonOf(const Rate& rate) {
  return formatted(R"({"total":%llu,"mean":%.4f,"percentile99":%u,"peak":%u,"peakAt":"%s"})",
                   static_cast<unsigned long long>(rate.total), rate.mean, rate.percentile, rate.peak,
                   clockText(rate.peakAt).c_str());
}

}  // namespace

std::string clockText(Seconds second) {
  const auto time = static_cast<int>((firstCounted + second) % day);
  return formatted("%02d:%02d:%02d", time / 3600, time / 60 % 60, time % 60);
}

std::string grouped(std::uint64_t number) {
  std::string text = std::to_string(number);
  for (std::size_t position = text.size(); position > 3;) text.insert(position -= 3, ",");
  return text;
}

std::string captionOf(const Settings& settings, const Description& description) {
  std::string text = "launches " + description.launches + "; zones " + description.zones +
                     formatted("; %g %% asleep at night", settings.sleeping * 100);
  if (settings.delay > 0)
    text += formatted("; passes delayed by up to %lld s", static_cast<long long>(settings.delay));
  return text;
}

std::string textReport(const Settings& settings, const Description& description, const FleetDay& result) {
  const Bytes bytes(description);
  const Rate uploads = result.uploads.rate();
  const Rate launches = result.launches.rate();
  const Seconds busiest = result.uploads.busiestHour();
  std::string text = grouped(static_cast<std::uint64_t>(settings.installations)) + " installations; " +
                     captionOf(settings, description) + "\n";
  text += formatted("\n%-36s %14s %12s %14s %12s   %s\n", "requests", "in a day", "mean/s", "99th pct/s",
                    "peak/s", "at (UTC)");
  text += rowOf("uploads", uploads);
  text += rowOf("  in the busiest hour, from " + clockText(busiest), result.uploads.rate(busiest, hour));
  text += rowOf("version fetches", launches);
  text += rowOf("beacons", times(launches, beaconsPerLaunch));
  const double perUpload = static_cast<double>(bytes.upload);
  const double perLaunch = static_cast<double>(bytes.launch);
  text += formatted("\n%-36s %14s %12s %14s %12s\n", "bytes that the agents send", "in a day", "mean/s", "",
                    "peak/s");
  const auto bytesRow = [](const char* name, double each, const Rate& rate) {
    return formatted(
        "%-36s %14s %12s %14s %12s\n", name, bytesText(each * static_cast<double>(rate.total)).c_str(),
        bytesText(each * rate.mean).c_str(), "", bytesText(each * static_cast<double>(rate.peak)).c_str());
  };
  text += bytesRow(formatted("uploads, %zu bytes each", bytes.upload).c_str(), perUpload, uploads);
  text += bytesRow(formatted("launches, %zu bytes each", bytes.launch).c_str(), perLaunch, launches);
  return text;
}

std::string jsonReport(const Settings& settings, const Description& description, const FleetDay& result) {
  const Bytes bytes(description);
  const Rate launches = result.launches.rate();
  const Seconds busiest = result.uploads.busiestHour();
  return formatted(R"({"installations":%lld,)", static_cast<long long>(settings.installations)) +
         "\"launches\":" + tools::jsonString(description.launches) +
         ",\"zones\":" + tools::jsonString(description.zones) +
         formatted(R"(,"sleeping":%g,"delay":%lld,"seed":%llu,)", settings.sleeping,
                   static_cast<long long>(settings.delay), static_cast<unsigned long long>(settings.seed)) +
         "\n\"uploads\":" + jsonOf(result.uploads.rate()) + ",\n\"busiestHour\":{\"begin\":\"" +
         clockText(busiest) + "\",\"uploads\":" + jsonOf(result.uploads.rate(busiest, hour)) +
         "},\n\"versionFetches\":" + jsonOf(launches) +
         ",\n\"beacons\":" + jsonOf(times(launches, beaconsPerLaunch)) +
         formatted(",\n\"bytes\":{\"upload\":%zu,\"launch\":%zu}}\n", bytes.upload, bytes.launch);
}

}  // namespace fleet
