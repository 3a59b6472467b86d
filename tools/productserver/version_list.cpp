#include "tools/productserver/version_list.h"

namespace tools {
namespace {

std::string escapedForXml(std::string_view text) {
  std::string escaped;
  for (const char letter : text) {
    if (letter == '&') {
      escaped += "&amp;";
    } else if (letter == '<') {
      escaped += "&lt;";
    } else if (letter == '>') {
      escaped += "&gt;";
    } else {
      escaped += letter;
    }
  }
  return escaped;
}

}  // namespace

std::string versionList(std::string_view version) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
         "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
         "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
         "<plist version=\"1.0\">\n"
         "<dict>\n"
         "\t<key>version</key>\n"
         "\t<string>" +
         escapedForXml(version) +
         "</string>\n"
         "</dict>\n"
         "</plist>\n";
}

}  // namespace tools
