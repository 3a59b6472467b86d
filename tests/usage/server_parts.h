#pragma once

#include <string>

namespace record_parts {

// Sets the results of the fake productServer() and testUploadServer().
void setServers(const std::string& product, const std::string& testUpload);

}  // namespace record_parts
