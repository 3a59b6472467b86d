#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace test_support {

// One entry of the system log as syslog(3) sends it.
struct SyslogMessage {
  int priority = 0;  // 0 to 7, without the facility
  int facility = 0;  // as in LOG_USER
  std::string ident = {};
  std::string text = {};

  bool operator==(const SyslogMessage&) const = default;
};

// Takes "<PRI>Mmm dd hh:mm:ss ident[pid]: text" apart; the "[pid]" may be missing. Nothing when it has
// another form.
[[nodiscard]] std::optional<SyslogMessage> parseSyslogMessage(std::string_view datagram);

}  // namespace test_support
