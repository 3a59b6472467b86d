#include "platform/text_prefix.h"

#include <QTextBoundaryFinder>

#include "platform/linux/windows/text_impl.h"

namespace platform {
namespace {

// Returns the longest prefix of at most `length` bytes that ends at a code point boundary. Cuts malformed
// UTF-8 anywhere.
std::string_view cutToBytes(std::string_view text, std::size_t length) {
  if (text.size() <= length) return text;
  constexpr std::size_t maxContinuations = 3;
  std::size_t end = length;
  const auto continues = [&] { return (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U; };
  while (end > 0 && length - end < maxContinuations && continues()) --end;
  return text.substr(0, end);
}

QString cutToCodePoints(QString text, std::size_t count) {
  qsizetype end = 0;
  for (; count > 0 && end < text.size(); --count) end += text.at(end).isHighSurrogate() ? 2 : 1;
  text.truncate(end);
  return text;
}

// Returns the end of the last whole grapheme, of at most `maxCharacters`. In a text that has been cut, the
// last grapheme may be incomplete and is left out unless it is the only one.
qsizetype endOfCharacters(const QString& text, std::size_t maxCharacters, bool isCut) {
  QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
  qsizetype end = 0;
  for (; maxCharacters > 0; --maxCharacters) {
    const qsizetype next = finder.toNextBoundary();
    const bool isHalf = isCut && next == text.size() && end > 0;
    if (next < 0 || isHalf) break;
    end = next;
  }
  return end;
}

}  // namespace

std::string textPrefix(std::string_view text, std::size_t maxCharacters, std::size_t maxCodePoints) {
  constexpr std::size_t maxBytesOfCodePoint = 4;
  const std::string_view bytes = cutToBytes(text, maxCodePoints * maxBytesOfCodePoint);
  const QString decoded = textOf(bytes);
  const QString bounded = cutToCodePoints(decoded, maxCodePoints);
  const bool isCut = bytes.size() < text.size() || bounded.size() < decoded.size();
  return bounded.left(endOfCharacters(bounded, maxCharacters, isCut)).toStdString();
}

}  // namespace platform
