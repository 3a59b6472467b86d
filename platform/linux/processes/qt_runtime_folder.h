#pragma once

#include <optional>
#include <string>
#include <vector>

namespace platform {

// Sets XDG_RUNTIME_DIR for the start of Qt. If the variable is unset or names a folder that is missing, not
// owned by the user or accessible to others, Qt creates the folder it names, or runtime-USER in $TMPDIR or
// /tmp. While this object exists, the variable names the agent's private folder in these cases. If there is
// no private folder, XDG_RUNTIME_DIR and TMPDIR name a path that cannot be created.
//
// The destructor restores the variables for the programs that the agent starts. Main thread only. Other
// threads may read the environment meanwhile, because glibc replaces its entries in place.
class QtRuntimeFolder {
 public:
  QtRuntimeFolder();
  ~QtRuntimeFolder();
  QtRuntimeFolder(const QtRuntimeFolder&) = delete;
  QtRuntimeFolder& operator=(const QtRuntimeFolder&) = delete;

 private:
  struct Variable {
    const char* name;
    std::optional<std::string> value;
  };

  void replace(const char* name, const char* value);

  std::vector<Variable> replaced_;
};

}  // namespace platform
