#include "tools/productserver/port_file.h"

#include <cstdio>
#include <fstream>

namespace tools {

bool writePortFile(const std::string& path, int port) {
  const std::string unfinished = path + ".part";
  std::ofstream stream(unfinished);
  stream << port << '\n';
  stream.close();
  return stream && std::rename(unfinished.c_str(), path.c_str()) == 0;
}

}  // namespace tools
