#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace tools {

struct FormPart {
  std::string name;
  std::optional<std::string> fileName;  // none: a plain field
  std::string type;                     // as sent; "text/plain" where the part names none
  std::string data;

  bool operator==(const FormPart&) const = default;
};

struct FormError {
  std::string reason;  // a line for people

  bool operator==(const FormError&) const = default;
};

// Takes the body of a multipart/form-data request apart (RFC 2046 and 7578); `contentType` is the request's
// header, which names the boundary. Lines end with CR LF. A delimiter is a whole line, so that data which
// merely begins like one stays data. Any thread.
[[nodiscard]] std::variant<std::vector<FormPart>, FormError> parseFormData(std::string_view contentType,
                                                                           std::string_view body);

}  // namespace tools
