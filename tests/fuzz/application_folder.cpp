#include "tests/fuzz/application_folder.h"

#include <stdlib.h>

#include <fstream>
#include <stdexcept>

#include "tests/harness/processes/file_contents.h"
#include "usage/application_directory.h"

namespace fuzz {

ApplicationFolder::ApplicationFolder() {
  std::string root = "/tmp/fuzz.XXXXXX";
  if (::mkdtemp(root.data()) == nullptr) throw std::runtime_error("cannot create a temporary folder");
  root_ = root;
  ::setenv("XDG_DATA_HOME", root.c_str(), 1);
  folder_ = applicationDirectory().value_or("");
  if (!folder_.string().starts_with(root))
    throw std::runtime_error("the application directory is not in the temporary folder");
}

ApplicationFolder::~ApplicationFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(root_, ignored);
}

void ApplicationFolder::write(const std::string& name, std::string_view bytes) const {
  std::ofstream(folder_ / name, std::ios::binary) << bytes;
}

std::string ApplicationFolder::read(const std::string& name) const {
  return test_support::contentsOf(folder_ / name);
}

}  // namespace fuzz
