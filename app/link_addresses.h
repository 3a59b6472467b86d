#pragma once

#include <string>
#include <string_view>

// The URLs that the menu opens, already escaped. `server` is the product server's origin, as in
// "https://www.tovalin.example". Frozen: doc/compatibility.md. Thread-safe.

inline constexpr std::string_view facebookPage = "https://www.facebook.com/kesmoor";

[[nodiscard]] std::string productPage(std::string_view server);
[[nodiscard]] std::string reviewPage(std::string_view server);
[[nodiscard]] std::string sharePage(std::string_view server);
[[nodiscard]] std::string tweetPage(std::string_view server);
