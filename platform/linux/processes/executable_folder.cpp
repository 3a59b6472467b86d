#include "platform/executable_folder.h"

#include <system_error>

namespace platform {

std::filesystem::path executableFolder() {
  std::error_code error;
  const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
  return error ? std::filesystem::path() : program.parent_path();
}

}  // namespace platform
