#include "app/link_addresses.h"

#include <gtest/gtest.h>

namespace {

constexpr const char* server = "https://www.tovalin.example";

TEST(LinkAddresses, MatchFrozenAddresses) {
  EXPECT_EQ(facebookPage, "https://www.facebook.com/kesmoor");
  EXPECT_EQ(productPage(server), "https://www.tovalin.example/tovalin");
  EXPECT_EQ(reviewPage(server), "https://www.tovalin.example/tovalin/review");
  EXPECT_EQ(sharePage(server),
            "https://www.facebook.com/sharer/sharer.php?u=https://www.tovalin.example/tovalin");
  EXPECT_EQ(tweetPage(server),
            "https://twitter.com/intent/tweet?text=[Tovalin]%20Easily%20manage%20the%20files%20in%20your%20"
            "iDevice.%20And%20transfer%20contents%20via%20Finder.%20No%20iTunes%20No%20jailbreak.%20FREE!%20"
            "https://www.tovalin.example/tovalin/");
}

}  // namespace
