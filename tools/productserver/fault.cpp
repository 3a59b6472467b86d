#include "tools/productserver/fault.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <system_error>

namespace tools {
namespace {

struct Entry {
  Fault fault;
  std::string_view name;
  std::string_view text;
};

constexpr std::array kFaults = {
    Entry{Fault::RefuseStatus500, "refuse-status-500", "status 500 with one line of text"},
    Entry{Fault::EmptyBody, "empty-body", "status 200 without a body"},
    Entry{Fault::NotUtf8, "not-utf8", "a body of bytes 0xff"},
    Entry{Fault::Overlong, "overlong", "a body with an overlong UTF-8 form, c0 af"},
    Entry{Fault::Surrogate, "surrogate", "a body with an encoded surrogate, ed a0 80"},
    Entry{Fault::ResetBefore, "reset-before", "reset after the path was read"},
    Entry{Fault::ResetWithinBody, "reset-within-body", "reset after the first byte of the request's body"},
    Entry{Fault::ResetAfter, "reset-after", "reads the request, then resets"},
    Entry{Fault::Drop, "drop", "reads the request, then closes without an answer"},
    Entry{Fault::Silent, "silent", "reads the request, then sends nothing until the client leaves"},
    Entry{Fault::StallHeader, "stall-header", "stops within the answer's header until the client leaves"},
    Entry{Fault::StallBody, "stall-body", "stops in the middle of the answer's body until the client leaves"},
    Entry{Fault::Slow, "slow", "the first 20 bytes of the body at 0.5 s each, then the rest"},
    Entry{Fault::Endless, "endless", "the answer, then endless chunks of spaces"},
    Entry{Fault::Huge, "huge", "the answer, padded with spaces to 17 MiB"},
    Entry{Fault::RedirectLoop, "redirect-loop", "status 302 to the same address"},
    Entry{Fault::Gzip, "gzip", "the answer compressed, even if the client does not accept that"},
    Entry{Fault::Chunked, "chunked", "the answer in chunks of 7 bytes"},
};

std::optional<unsigned> parseCount(std::string_view text) {
  constexpr unsigned kMax = 1'000'000;
  unsigned count = 0;
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, count);
  if (error != std::errc() || rest != end || count == 0 || count > kMax) return std::nullopt;
  return count;
}

}  // namespace

std::string_view nameOf(Fault fault) {
  return std::find_if(kFaults.begin(), kFaults.end(),
                      [fault](const Entry& entry) { return entry.fault == fault; })
      ->name;
}

std::optional<FaultOrder> parseFaultOrder(std::string_view text) {
  const std::size_t star = text.find('*');
  const std::string_view name = text.substr(0, star);
  const auto found =
      std::find_if(kFaults.begin(), kFaults.end(), [name](const Entry& entry) { return entry.name == name; });
  if (found == kFaults.end()) return std::nullopt;
  if (star == text.npos) return FaultOrder{found->fault};
  const std::optional<unsigned> count = parseCount(text.substr(star + 1));
  return count ? std::optional(FaultOrder{found->fault, count}) : std::nullopt;
}

std::string textOf(const FaultOrder& order) {
  return std::string(nameOf(order.fault)) + (order.count ? "*" + std::to_string(*order.count) : "");
}

std::string describeFaults() {
  constexpr std::size_t kColumn = 20;
  std::string text;
  for (const Entry& entry : kFaults) {
    text += "  " + std::string(entry.name) + std::string(kColumn - entry.name.size(), ' ') +
            std::string(entry.text) + "\n";
  }
  return text;
}

}  // namespace tools
