#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace tools {

// A structured value of a header, as in: form-data; name="a b"; filename=c
struct HeaderValue {
  std::string value;                              // in lower case
  std::map<std::string, std::string> parameters;  // names in lower case, quotes taken off
};

// Nothing when the text has not that form or gives a parameter twice. A backslash escapes a quote or a
// backslash only: file names of some systems hold others.
[[nodiscard]] std::optional<HeaderValue> parseHeaderValue(std::string_view text);

// The text without the blanks and tabs around it.
[[nodiscard]] std::string_view trimmed(std::string_view text);

// ASCII letters in lower case, all else as it is.
[[nodiscard]] std::string lowerCase(std::string_view text);

}  // namespace tools
