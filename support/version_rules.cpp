#include "support/version_rules.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "usage/version_text.h"

namespace {

constexpr std::size_t updateCommandBufferSize = 512;  // frozen: doc/compatibility.md

std::array<std::int64_t, 3> components(const std::optional<std::string>& version) {
  std::array<std::int64_t, 3> numbers{};
  const auto pieces = splitAtEach(version ? std::string_view(*version) : "", ".");
  for (std::size_t i = 0; i < numbers.size() && i < pieces.size(); ++i) numbers[i] = integerValue(pieces[i]);
  return numbers;
}

}  // namespace

bool isNewerVersion(const std::optional<std::string>& current, const std::optional<std::string>& recent) {
  return components(recent) > components(current);
}

std::optional<std::string> versionInList(std::string_view body) {
  const auto list = platform::parsePropertyList(std::as_bytes(std::span(body)));
  const auto* version = list ? list->textAt("version") : nullptr;
  return version == nullptr ? std::nullopt : std::optional(*version);
}

std::optional<std::string> copyUpdaterCommand(std::string_view bundlePath) {
  // Frozen: doc/compatibility.md.
  std::string command = "cp -Rf " + std::string(bundlePath) + "/Contents/Resources/tovalinupdate.app /tmp/";
  if (command.size() >= updateCommandBufferSize) return std::nullopt;
  return command;
}
