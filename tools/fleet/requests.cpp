#include "tools/fleet/requests.h"

#include <array>

#include "usage/record_bytes.h"
#include "usage/upload_rules.h"

namespace fleet {
namespace {

std::string commonLines(std::string_view host) {
  return "Host: " + std::string(host) + "\r\nUser-Agent: TovalinTray\r\nAccept: */*\r\n";
}

}  // namespace

std::string uploadHead(std::string_view host, std::size_t bodySize) {
  const std::string address = uploadAddress(host);
  return "POST " + address.substr(address.find('/', std::string_view("http://").size())) + " HTTP/1.1\r\n" +
         commonLines(host) + uploadContentType() + "\r\nContent-Length: " + std::to_string(bodySize) +
         "\r\n\r\n";
}

std::string versionFetchHead(std::string_view host) {
  return "GET /product/nimba/binary/tovalin_recent_version_info.xml HTTP/1.1\r\n" + commonLines(host) +
         "Accept-Encoding: gzip, deflate\r\nCache-Control: no-cache\r\nPragma: no-cache\r\n\r\n";
}

std::size_t uploadSize(std::string_view host, std::size_t fileSize) {
  const std::size_t bodySize = uploadBodyHead().size() + fileSize + uploadBodyTail().size();
  return uploadHead(host, bodySize).size() + bodySize;
}

std::size_t typicalFileSize() {
  constexpr std::size_t deviceEvents = 4;
  constexpr std::string_view version = "1.0.0";
  const std::string identifier(36, '0');
  const std::tm time{};
  const std::array<TransferEntry, 1> entry{{{record_format::message::entryKind1, "12345678", "jpg"}}};
  return headerBytes(time, identifier, record_format::lowestOsCode, version).size() +
         startRecord(version, time).size() + quitRecord(time).size() +
         deviceEvents * deviceEventRecord(record_format::message::deviceEvent3, time, "iDevice1").size() +
         40 * transferRecords(entry).size();
}

}  // namespace fleet
