#include "app/link_addresses.h"

std::string productPage(std::string_view server) {
  return std::string(server) + "/tovalin";
}

std::string reviewPage(std::string_view server) {
  return std::string(server) + "/tovalin/review";
}

std::string sharePage(std::string_view server) {
  return "https://www.facebook.com/sharer/sharer.php?u=" + productPage(server);
}

std::string tweetPage(std::string_view server) {
  return "https://twitter.com/intent/tweet?text="
         "[Tovalin]%20Easily%20manage%20the%20files%20in%20your%20iDevice."
         "%20And%20transfer%20contents%20via%20Finder.%20No%20iTunes%20No%20jailbreak.%20FREE!%20" +
         productPage(server) + "/";
}
