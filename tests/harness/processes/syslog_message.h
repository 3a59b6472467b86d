#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace test_support {

// A log entry as syslog(3) sends it.
struct SyslogMessage {
  int priority = 0;  // 0 to 7, without the facility
  int facility = 0;  // for example LOG_USER
  std::string ident = {};
  std::string text = {};

  bool operator==(const SyslogMessage&) const = default;
};

// Parses "<PRI>Mmm dd hh:mm:ss ident[pid]: text"; the "[pid]" is optional. Returns nullopt if the entry is
// malformed.
[[nodiscard]] std::optional<SyslogMessage> parseSyslogMessage(std::string_view datagram);

}  // namespace test_support
