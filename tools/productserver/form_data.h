#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace tools {

struct FormPart {
  std::string name;
  std::optional<std::string> fileName;  // not set for a plain field
  std::string type;                     // as sent; "text/plain" by default
  std::string data;

  bool operator==(const FormPart&) const = default;
};

struct FormError {
  std::string reason;  // one line of text

  bool operator==(const FormError&) const = default;
};

// Parses the body of a multipart/form-data request (RFC 2046, RFC 7578). `contentType` is the request header
// that contains the boundary. Lines end with CR LF. A delimiter is a whole line; data that begins like one
// remains data. Thread-safe.
[[nodiscard]] std::variant<std::vector<FormPart>, FormError> parseFormData(std::string_view contentType,
                                                                           std::string_view body);

}  // namespace tools
