#include "tools/fleet/picture.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <span>

#include "tools/fleet/report.h"

namespace fleet {
namespace {

// In points.
constexpr int width = 960;
constexpr int left = 72;
constexpr int right = 24;
constexpr int firstPanel = 92;
constexpr int panelHeight = 130;
constexpr int panelPitch = 214;
constexpr int panels = 3;
constexpr int height = firstPanel + panels * panelPitch - 26;
constexpr int plotWidth = width - left - right;
constexpr int linesOfGrid = 4;

constexpr const char* style = R"(<style>
text { font: 13px "DejaVu Sans", sans-serif; fill: #333; }
.caption { font-size: 17px; font-weight: bold; }
.title { font-size: 14px; font-weight: bold; }
.grid { stroke: #ddd; stroke-width: 1; }
.axis { stroke: #666; stroke-width: 1; }
.uploads { fill: #1f6fb4; }
.launches { fill: #c2611a; }
</style>
)";

std::string number(double value) {
  std::string text(32, '\0');
  text.resize(static_cast<std::size_t>(std::snprintf(text.data(), text.size(), "%.2f", value)));
  return text;
}

std::string escaped(const std::string& text) {
  std::string result;
  for (const char character : text) {
    if (character == '&')
      result += "&amp;";
    else if (character == '<')
      result += "&lt;";
    else
      result += character;
  }
  return result;
}

std::string text(double x, double y, const std::string& words, const std::string& attributes = {}) {
  return "<text x=\"" + number(x) + "\" y=\"" + number(y) + "\" " + attributes + ">" + escaped(words) +
         "</text>\n";
}

std::string line(double x1, double y1, double x2, double y2, const char* kind) {
  return std::string("<line class=\"") + kind + "\" x1=\"" + number(x1) + "\" y1=\"" + number(y1) +
         "\" x2=\"" + number(x2) + "\" y2=\"" + number(y2) + "\"/>\n";
}

std::string cut(const std::string& caption) {
  return caption.size() <= picturedCaption ? caption : caption.substr(0, picturedCaption - 3) + "...";
}

struct Panel {
  std::string title;
  const char* kind;
  std::span<const std::uint32_t> seconds;
  Seconds begin;      // of the first element, in the counted day
  Seconds perColumn;  // a column shows the maximum of this many seconds
  Seconds perLabel;   // distance of the time labels
  int top = 0;        // of the plot area
};

double xAt(const Panel& panel, Seconds second) {
  return left + plotWidth * static_cast<double>(second) / static_cast<double>(panel.seconds.size());
}

std::string gridOf(const Panel& panel, double maximum) {
  std::string lines;
  for (int i = 0; i <= linesOfGrid; ++i) {
    const double y = panel.top + panelHeight * (1 - static_cast<double>(i) / linesOfGrid);
    lines += line(left, y, width - right, y, i == 0 ? "axis" : "grid");
    lines += text(left - 8, y + 4.5, shortNumber(maximum * i / linesOfGrid), "text-anchor=\"end\"");
  }
  for (Seconds at = 0; at <= static_cast<Seconds>(panel.seconds.size()); at += panel.perLabel) {
    const double x = xAt(panel, at);
    lines += line(x, panel.top + panelHeight, x, panel.top + panelHeight + 5, "axis");
    lines += text(x, panel.top + panelHeight + 20, clockText(panel.begin + at).substr(0, 5),
                  "text-anchor=\"middle\"");
  }
  return lines;
}

// Draws all columns as one path. Omits empty columns, so that spikes stay visible. Columns are at least one
// point wide.
std::string columnsOf(const Panel& panel, double maximum) {
  const double bottom = panel.top + panelHeight;
  const auto count = static_cast<std::size_t>(panel.perColumn);
  const double wide = std::max(1.0, xAt(panel, panel.perColumn) - left);
  std::string path;
  for (std::size_t i = 0; i < panel.seconds.size(); i += count) {
    const auto column = panel.seconds.subspan(i, std::min(count, panel.seconds.size() - i));
    const std::uint32_t highest = *std::max_element(column.begin(), column.end());
    if (highest == 0) continue;
    path += "M" + number(xAt(panel, static_cast<Seconds>(i))) + "," + number(bottom) + "v-" +
            number(panelHeight * highest / maximum) + "h" + number(wide) + "V" + number(bottom) + "z";
  }
  return std::string("<path class=\"") + panel.kind + "\" d=\"" + path + "\"/>\n";
}

std::string drawn(const Panel& panel) {
  const double maximum = axisMaximum(*std::max_element(panel.seconds.begin(), panel.seconds.end()));
  return text(left, panel.top - 14, panel.title, "class=\"title\"") + gridOf(panel, maximum) +
         columnsOf(panel, maximum);
}

}  // namespace

double axisMaximum(double value) {
  double power = 1;
  while (power * 10 < value) power *= 10;
  for (const double step : {1.0, 2.0, 2.5, 5.0}) {
    if (value <= step * power) return step * power;
  }
  return power * 10;
}

std::string shortNumber(double value) {
  constexpr std::string_view units[] = {"", " k", " M", " G"};
  std::size_t unit = 0;
  for (; value >= 1000 && unit + 1 < std::size(units); ++unit) value /= 1000;
  std::string digits(32, '\0');
  digits.resize(static_cast<std::size_t>(std::snprintf(digits.data(), digits.size(), "%.4g", value)));
  return digits + std::string(units[unit]);
}

std::string picture(std::uint64_t installations, const std::string& caption, const FleetDay& result) {
  const Seconds busiest = result.uploads.busiestHour();
  const auto hourOfUploads =
      result.uploads.seconds().subspan(static_cast<std::size_t>(busiest), static_cast<std::size_t>(hour));
  const Rate uploads = result.uploads.rate();
  const Rate launches = result.launches.rate();
  const std::vector<Panel> all = {
      {"Uploads a second, the highest of each minute (peak " + grouped(uploads.peak) + ", mean of the day " +
           grouped(static_cast<std::uint64_t>(std::llround(uploads.mean))) + ")",
       "uploads", result.uploads.seconds(), 0, minute, 2 * hour},
      {"Uploads a second in the busiest hour", "uploads", hourOfUploads, busiest, 1, 5 * minute},
      {"Launches a second, the highest of each minute (peak " + grouped(launches.peak) + ")", "launches",
       result.launches.seconds(), 0, minute, 2 * hour}};
  std::string content = text(left, 30, grouped(installations) + " installations", "class=\"caption\"") +
                        text(left, 51, cut(caption) + "; times are UTC");
  int top = firstPanel;
  for (Panel panel : all) {
    panel.top = top;
    content += drawn(panel);
    top += panelPitch;
  }
  const std::string size = std::to_string(width) + " " + std::to_string(height);
  return "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 " + size + "\" width=\"" +
         std::to_string(width) + "\" height=\"" + std::to_string(height) + "\">\n" + style +
         "<rect width=\"100%\" height=\"100%\" fill=\"#fff\"/>\n" + content + "</svg>\n";
}

}  // namespace fleet
