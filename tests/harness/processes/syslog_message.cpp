#include "tests/harness/processes/syslog_message.h"

#include <syslog.h>

#include <charconv>

namespace test_support {
namespace {

constexpr std::size_t kTimestampLength = std::string_view("Mmm dd hh:mm:ss ").size();

}  // namespace

std::optional<SyslogMessage> parseSyslogMessage(std::string_view datagram) {
  const std::size_t close = datagram.find('>');
  if (!datagram.starts_with('<') || close == std::string_view::npos) return std::nullopt;
  int both = 0;
  const char* const end = datagram.data() + close;
  const auto number = std::from_chars(datagram.data() + 1, end, both);
  if (number.ec != std::errc() || number.ptr != end) return std::nullopt;

  datagram.remove_prefix(close + 1);
  if (datagram.size() < kTimestampLength) return std::nullopt;
  datagram.remove_prefix(kTimestampLength);
  const std::size_t colon = datagram.find(": ");
  if (colon == std::string_view::npos) return std::nullopt;
  const std::string_view tag = datagram.substr(0, colon);
  return SyslogMessage{.priority = LOG_PRI(both),
                       .facility = both & LOG_FACMASK,
                       .ident = std::string(tag.substr(0, tag.find('['))),
                       .text = std::string(datagram.substr(colon + 2))};
}

}  // namespace test_support
