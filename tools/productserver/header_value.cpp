#include "tools/productserver/header_value.h"

#include <algorithm>
#include <utility>

namespace tools {
namespace {

constexpr std::string_view kBlanks = " \t";

// Removes and returns the text before the first of the characters `ends`, or all of it if there is none.
std::string_view takeUpTo(std::string_view& text, std::string_view ends) {
  const std::size_t end = std::min(text.find_first_of(ends), text.size());
  const std::string_view taken = text.substr(0, end);
  text.remove_prefix(end);
  return taken;
}

void skipBlanks(std::string_view& text) {
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
}

// `text` begins after the opening quote.
std::optional<std::string> takeQuoted(std::string_view& text) {
  std::string value;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '"') {
      text.remove_prefix(i + 1);
      return value;
    }
    const bool escapes =
        text[i] == '\\' && i + 1 < text.size() && (text[i + 1] == '"' || text[i + 1] == '\\');
    if (escapes) ++i;
    value += text[i];
  }
  return std::nullopt;
}

std::optional<std::string> takeParameterValue(std::string_view& text) {
  if (text.starts_with('"')) {
    text.remove_prefix(1);
    return takeQuoted(text);
  }
  const std::string_view token = takeUpTo(text, "; \t");
  return token.empty() ? std::nullopt : std::optional(std::string(token));
}

// `text` begins after a semicolon.
bool takeParameter(std::string_view& text, HeaderValue& header) {
  const std::string name = lowerCase(trimmed(takeUpTo(text, "=;")));
  if (name.empty() || !text.starts_with('=')) return false;
  text.remove_prefix(1);
  skipBlanks(text);
  std::optional<std::string> value = takeParameterValue(text);
  if (!value) return false;
  skipBlanks(text);
  return header.parameters.emplace(name, *std::move(value)).second;
}

}  // namespace

std::string_view trimmed(std::string_view text) {
  skipBlanks(text);
  return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

std::string lowerCase(std::string_view text) {
  std::string lower(text);
  for (char& letter : lower) {
    if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
  }
  return lower;
}

std::optional<HeaderValue> parseHeaderValue(std::string_view text) {
  HeaderValue header;
  header.value = lowerCase(trimmed(takeUpTo(text, ";")));
  if (header.value.empty()) return std::nullopt;
  while (text.starts_with(';')) {
    text.remove_prefix(1);
    if (trimmed(text).empty()) return header;  // a trailing semicolon is common
    if (!takeParameter(text, header)) return std::nullopt;
  }
  return text.empty() ? std::optional(std::move(header)) : std::nullopt;
}

}  // namespace tools
