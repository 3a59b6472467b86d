#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tests/harness/desktop/x_picture.h"
#include "tests/harness/servers/product_server_double.h"

inline constexpr const char* noticeFile = "/product/nimba/binary/tovalinnotice.xml";
inline constexpr const char* bannerFolder = "/product/nimba/banner/";
inline constexpr const char* bannerListFile = "/product/nimba/banner/tovalinbanner.xml";
inline constexpr const char* versionFile = "/product/nimba/binary/tovalin_recent_version_info.xml";

inline constexpr test_support::Colour red{200, 20, 20};
inline constexpr test_support::Colour blue{20, 20, 200};

inline std::string plist(const std::string& content) {
  return "<?xml version=\"1.0\"?><plist version=\"1.0\">" + content + "</plist>";
}
inline std::string dictionary(const std::vector<std::pair<std::string, std::string>>& strings) {
  std::string text = "<dict>";
  for (const auto& [key, value] : strings)
    text.append("<key>").append(key).append("</key><string>").append(value).append("</string>");
  return text + "</dict>";
}
inline std::string noticeEntry(const std::string& key, const std::string& subject, const std::string& link) {
  return "<key>" + key + "</key>" + dictionary({{"subject", subject}, {"link", link}});
}
inline std::string noticeList(const std::string& firstLinkText = "http://one.example/a",
                              const std::string& secondLinkText = "http://two.example/b?c=d#e") {
  return plist("<dict>" + noticeEntry("notice_1", "The first notice", firstLinkText) +
               noticeEntry("notice_2", "The second notice", secondLinkText) + "</dict>");
}
inline std::string banner(const std::string& fileName, const std::string& link) {
  return dictionary({{"file_name", fileName}, {"link", link}});
}
inline std::string bannerList(const std::string& entries) {
  return plist("<array>" + entries + "</array>");
}

// Returns a uniformly coloured picture as PPM.
inline std::string pictureFile(test_support::Colour colour, int width = 420, int height = 40) {
  std::string bytes = "P6\n" + std::to_string(width) + " " + std::to_string(height) + "\n255\n";
  for (int i = 0; i < width * height; ++i)
    bytes.append(
        {static_cast<char>(colour.red), static_cast<char>(colour.green), static_cast<char>(colour.blue)});
  return bytes;
}

// A product server with all files of the support window: an update, a notice, and one red banner.
class SupportServer {
 public:
  void fillServer() {
    server_->putVersion("9.0.0");
    server_->put(noticeFile, noticeList());
    server_->put(bannerListFile, bannerList(banner("red.ppm", "http://banner.example/red")));
    server_->put(bannerFolder + std::string("red.ppm"), pictureFile(red));
  }

  // Returns the paths fetched since the last call.
  [[nodiscard]] std::vector<std::string> takeFetches() {
    std::vector<std::string> targets;
    const auto requests = server_->requests();
    for (; seenRequests_ < requests.size(); ++seenRequests_) {
      if (requests[seenRequests_].method == "GET") targets.push_back(requests[seenRequests_].target);
    }
    return targets;
  }

  std::unique_ptr<test_support::ProductServerDouble> server_ =
      std::make_unique<test_support::ProductServerDouble>();

 private:
  std::size_t seenRequests_ = 0;
};
