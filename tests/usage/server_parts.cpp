#include "tests/usage/server_parts.h"

#include "usage/server_addresses.h"

namespace record_parts {
namespace {

std::string product;
std::string testUpload;

}  // namespace

void setServers(const std::string& newProduct, const std::string& newTestUpload) {
  product = newProduct;
  testUpload = newTestUpload;
}

}  // namespace record_parts

std::string productServer() {
  return record_parts::product;
}

std::string testUploadServer() {
  return record_parts::testUpload;
}
