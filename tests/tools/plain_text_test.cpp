#include "tools/tvldump/plain_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace {

bool standsAsItIs(char character) {
  return character >= ' ' && character <= '~' && character != '"' && character != '\\';
}

// The lengths cover copies of one word, of two overlapping words and of several words.
TEST(PlainText, EveryByteIsCheckedAtEveryPosition) {
  for (std::size_t size = 1; size <= 35; ++size) {
    for (std::size_t place = 0; place < size; ++place) {
      for (int byte = 0; byte < 256; ++byte) {
        std::string text(size, 'a'), copy(size, '?');
        text[place] = static_cast<char>(byte);
        ASSERT_EQ(tools::copyIfPlain(copy.data(), text), standsAsItIs(text[place]))
            << byte << " at " << place << " of " << size;
        ASSERT_EQ(copy, text);
      }
    }
  }
}

// In the word-wise comparison a byte below a blank borrows from the following one.
TEST(PlainText, EveryPairOfBytesIsChecked) {
  for (int first = 0; first < 256; ++first) {
    for (int second = 0; second < 256; ++second) {
      const std::string text{'x', static_cast<char>(first), static_cast<char>(second), 'y', 'z'};
      std::string copy(text.size(), '?');
      ASSERT_EQ(tools::copyIfPlain(copy.data(), text), std::ranges::all_of(text, standsAsItIs))
          << first << " " << second;
    }
  }
}

TEST(PlainText, EmptyTextIsPlainAndWritesNothing) {
  char untouched = '?';
  EXPECT_TRUE(tools::copyIfPlain(&untouched, {}));
  EXPECT_EQ(untouched, '?');
}

}  // namespace
