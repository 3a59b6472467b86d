#include "platform/text_prefix.h"

#import <Cocoa/Cocoa.h>

#include <cstdint>
#include <iterator>
#include <utf8.h>

#include "platform/macos/foundation/autorelease_pool.h"
#include "platform/macos/foundation/text_impl.h"

namespace platform {
namespace {

// Returns the first `count` code points as valid UTF-8. Reads only the bytes that these can occupy.
std::string firstCodePoints(std::string_view text, std::size_t count) {
  constexpr std::size_t maxBytesOfCodePoint = 4;
  std::string valid;
  const std::string_view bytes = text.substr(0, count * maxBytesOfCodePoint);
  utf8::replace_invalid(bytes.begin(), bytes.end(), std::back_inserter(valid));
  auto end = valid.begin();
  for (; count > 0 && end != valid.end(); --count) utf8::unchecked::next(end);
  valid.erase(end, valid.end());
  return valid;
}

// Returns the end of the last whole grapheme, of at most `maxCharacters`. In a text that has been cut, the
// last grapheme may be incomplete and is left out unless it is the only one.
NSUInteger endOfCharacters(NSString* text, std::size_t maxCharacters, bool isCut) {
  NSRegularExpression* character = [NSRegularExpression regularExpressionWithPattern:@"\\X"
                                                                             options:0
                                                                               error:nullptr];
  const NSUInteger length = [text length];
  NSUInteger end = 0;
  for (; maxCharacters > 0 && end < length; --maxCharacters) {
    const NSRange found = [character rangeOfFirstMatchInString:text
                                                       options:0
                                                         range:NSMakeRange(end, length - end)];
    const NSUInteger next = found.location + found.length;
    const bool isHalf = isCut && next == length && end > 0;
    if (found.length == 0 || isHalf) break;
    end = next;
  }
  return end;
}

// Returns the prefix of a valid UTF-8 text that occupies `units` UTF-16 code units.
std::string_view firstUnits(std::string_view text, NSUInteger units) {
  constexpr std::uint32_t lastOfOneUnit = 0xFFFF;
  const char* end = text.data();
  for (NSUInteger taken = 0; taken < units;) taken += utf8::unchecked::next(end) > lastOfOneUnit ? 2 : 1;
  return text.substr(0, static_cast<std::size_t>(end - text.data()));
}

}  // namespace

std::string textPrefix(std::string_view text, std::size_t maxCharacters, std::size_t maxCodePoints) {
  const AutoreleasePool pool;
  const std::string bounded = firstCodePoints(text, maxCodePoints);
  NSString* decoded = textOf(bounded);
  const bool isCut = bounded.size() < text.size();
  return std::string(firstUnits(bounded, endOfCharacters(decoded, maxCharacters, isCut)));
}

}  // namespace platform
