#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/property_list.h"

// Interprets the parsed notice and banner lists of the server. The lists are untrusted and may hold any
// values. Thread-safe.

struct NoticeEntry {
  std::string subject;
  std::string link;
};

// Returns the two entries of a notice, "notice_1" and "notice_2", with two strings each. Returns nullopt
// unless both are complete.
[[nodiscard]] std::optional<std::array<NoticeEntry, 2>> noticeEntries(const platform::PropertyList& notice);

// Returns the first 500 characters of a notice's subject, more than ten times what fits on its line. Text
// shaping takes time proportional to the length, at each mouse move. Because a character may consist of any
// number of code points, the result is also limited to 2000 code points.
[[nodiscard]] std::string shownSubject(std::string_view subject);

struct Banner {
  std::string fileName;
  std::string link;
};

// Returns the entry selected by a random number; all entries are equally likely. Returns nullopt if the list
// is empty or not an array, or if the entry lacks one of its two strings.
[[nodiscard]] std::optional<Banner> chosenBanner(const platform::PropertyList& list, std::uint32_t random);

// Returns the accessible name of a banner: that it is one, and where it leads if `link` may be opened. The
// address is shown from its host on and limited to 100 characters.
[[nodiscard]] std::string bannerLabel(std::string_view link);

// Returns the path of the banner's picture on the product server. Returns nullopt if the name cannot be part
// of a URL. An empty name yields the banner folder, which is not a picture.
[[nodiscard]] std::optional<std::string> bannerPath(const Banner& banner);
