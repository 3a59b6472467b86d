#pragma once

#include <string>

namespace record_parts {

// Where this program's own bodies of the server addresses say that the servers are.
void setServers(const std::string& product, const std::string& testUpload);

}  // namespace record_parts
