#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace tools {

// A structured header value, as in: form-data; name="a b"; filename=c
struct HeaderValue {
  std::string value;                              // in lower case
  std::map<std::string, std::string> parameters;  // names in lower case, values without quotes
};

// Returns nullopt if the text is malformed or repeats a parameter. A backslash escapes only a quote or a
// backslash, because file names of some systems contain other backslashes.
[[nodiscard]] std::optional<HeaderValue> parseHeaderValue(std::string_view text);

// Returns the text without leading and trailing spaces and tabs.
[[nodiscard]] std::string_view trimmed(std::string_view text);

// Converts ASCII letters to lower case.
[[nodiscard]] std::string lowerCase(std::string_view text);

}  // namespace tools
