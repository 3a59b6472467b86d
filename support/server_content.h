#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/property_list.h"

// What the server's notice and banner lists mean, as functions of what was parsed. What they hold may be
// anything. Any thread.

struct NoticeEntry {
  std::string subject;
  std::string link;
};

// The two entries of a notice, "notice_1" and "notice_2", each with its two strings. Nothing unless both are
// complete.
[[nodiscard]] std::optional<std::array<NoticeEntry, 2>> noticeEntries(const platform::PropertyList& notice);

// What is shown of a notice's subject: its first 500 characters, more than ten times what fits its line.
// Shaping a text takes the time that its length does, and once more for each move of the mouse; characters
// may be of any length, so there are at most 2000 code points.
[[nodiscard]] std::string shownSubject(std::string_view subject);

struct Banner {
  std::string fileName;
  std::string link;
};

// The entry that a random number chooses, each one equally likely. Nothing for an empty list, what is no list
// of entries, and an entry without one of its two strings.
[[nodiscard]] std::optional<Banner> chosenBanner(const platform::PropertyList& list, std::uint32_t random);

// Where the banner's picture stands on the product server. Nothing when its name can't be part of an address;
// without a name it is the folder of the banners, whose answer is no picture.
[[nodiscard]] std::optional<std::string> bannerPath(const Banner& banner);
