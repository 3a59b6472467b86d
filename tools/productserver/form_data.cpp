#include "tools/productserver/form_data.h"

#include <algorithm>
#include <map>
#include <utility>

#include "tools/productserver/header_value.h"

namespace tools {
namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kBlankLine = "\r\n\r\n";

using Headers = std::map<std::string, std::string>;
using PartResult = std::variant<FormPart, FormError>;

struct Delimiter {
  std::size_t begin;  // of the preceding line end, which is part of the delimiter
  std::size_t end;    // after the delimiter's own line end
  bool last;
};

std::variant<std::string, FormError> boundaryIn(std::string_view contentType) {
  constexpr std::size_t kMaxLength = 70;
  const std::optional<HeaderValue> type = parseHeaderValue(contentType);
  if (!type || type->value != "multipart/form-data") return FormError{"the type is not multipart/form-data"};
  const auto boundary = type->parameters.find("boundary");
  if (boundary == type->parameters.end()) return FormError{"the Content-Type has no boundary"};
  const std::string& text = boundary->second;
  if (text.empty() || text.size() > kMaxLength || text.ends_with(' ') ||
      text.find_first_of("\r\n") != text.npos)
    return FormError{"the boundary is not 1 to 70 allowed characters"};
  return text;
}

// Parses the rest of a delimiter line after the boundary. Returns nullopt if it contains more than padding.
std::optional<Delimiter> delimiterAt(std::string_view body, std::size_t begin, std::size_t afterBoundary) {
  std::string_view rest = body.substr(afterBoundary);
  const bool last = rest.starts_with("--");
  if (last) rest.remove_prefix(2);
  const std::size_t lineEnd = rest.find(kLineEnd);
  if (!trimmed(rest.substr(0, lineEnd)).empty()) return std::nullopt;
  if (lineEnd == rest.npos) return last ? std::optional(Delimiter{begin, body.size(), last}) : std::nullopt;
  return Delimiter{begin, body.size() - rest.size() + lineEnd + kLineEnd.size(), last};
}

std::optional<Delimiter> findDelimiter(std::string_view body, const std::string& boundary, std::size_t from) {
  const std::string mark = "--" + boundary;
  for (std::size_t at = body.find(mark, from); at != body.npos; at = body.find(mark, at + 1)) {
    const bool beginsLine = at == 0 || (at >= from + 2 && body.substr(at - 2, 2) == kLineEnd);
    if (!beginsLine) continue;
    if (const auto found = delimiterAt(body, at == 0 ? 0 : at - 2, at + mark.size())) return found;
  }
  return std::nullopt;
}

// Removes the next header from the text, including its continuation lines.
std::string takeHeaderLine(std::string_view& text) {
  std::string line;
  do {
    const std::size_t end = std::min(text.find(kLineEnd), text.size());
    line += text.substr(0, end);
    text.remove_prefix(std::min(end + kLineEnd.size(), text.size()));
  } while (text.starts_with(' ') || text.starts_with('\t'));
  return line;
}

std::optional<Headers> parseHeaders(std::string_view text) {
  Headers headers;
  while (!text.empty()) {
    const std::string line = takeHeaderLine(text);
    const std::size_t colon = line.find(':');
    if (colon == 0 || colon == line.npos) return std::nullopt;
    headers.emplace(lowerCase(trimmed(line.substr(0, colon))),
                    trimmed(std::string_view(line).substr(colon + 1)));
  }
  return headers;
}

PartResult describedPart(const Headers& headers) {
  const auto written = headers.find("content-disposition");
  if (written == headers.end()) return FormError{"a part has no Content-Disposition"};
  const std::optional<HeaderValue> disposition = parseHeaderValue(written->second);
  if (!disposition || disposition->value != "form-data")
    return FormError{"the Content-Disposition of a part is not form-data"};
  const auto name = disposition->parameters.find("name");
  if (name == disposition->parameters.end()) return FormError{"a part has no name"};
  FormPart part;
  part.name = name->second;
  const auto fileName = disposition->parameters.find("filename");
  if (fileName != disposition->parameters.end()) part.fileName = fileName->second;
  const auto type = headers.find("content-type");
  part.type = type == headers.end() ? "text/plain" : type->second;
  return part;
}

// `text` is the part between two delimiters.
PartResult parsePart(std::string_view text) {
  const std::size_t blankLine = text.find(kBlankLine);
  const std::optional<Headers> headers = parseHeaders(text.substr(0, blankLine));
  if (!headers) return FormError{"a part has an invalid header line"};
  PartResult part = describedPart(*headers);
  if (auto* good = std::get_if<FormPart>(&part); good != nullptr && blankLine != text.npos)
    good->data = text.substr(blankLine + kBlankLine.size());
  return part;
}

}  // namespace

std::variant<std::vector<FormPart>, FormError> parseFormData(std::string_view contentType,
                                                             std::string_view body) {
  const auto boundary = boundaryIn(contentType);
  if (const auto* error = std::get_if<FormError>(&boundary)) return *error;
  const std::string& mark = std::get<std::string>(boundary);
  std::vector<FormPart> parts;
  std::optional<Delimiter> delimiter = findDelimiter(body, mark, 0);
  if (!delimiter) return FormError{"the boundary does not occur"};
  while (!delimiter->last) {
    const auto next = findDelimiter(body, mark, delimiter->end);
    if (!next) return FormError{"the closing delimiter is missing"};
    PartResult part = parsePart(body.substr(delimiter->end, next->begin - delimiter->end));
    if (const auto* error = std::get_if<FormError>(&part)) return *error;
    parts.push_back(std::get<FormPart>(std::move(part)));
    delimiter = next;
  }
  return parts;
}

}  // namespace tools
