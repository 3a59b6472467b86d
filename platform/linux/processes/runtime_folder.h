#pragma once

#include <optional>
#include <string>
#include <vector>

namespace platform {

// While Qt starts and finds $XDG_RUNTIME_DIR unset, missing, another user's or open to others, it makes the
// folder runtime-USER in $TMPDIR or /tmp, or what the variable names. As long as this object lives, the
// variable names the agent's private folder in these cases; if there is none, both variables name no
// folder. Then they are the user's again, for the programs that the agent starts. Main thread only; other
// threads may read the environment meanwhile, since glibc changes its entries in place.
class ToolkitsRuntimeFolder {
 public:
  ToolkitsRuntimeFolder();
  ~ToolkitsRuntimeFolder();
  ToolkitsRuntimeFolder(const ToolkitsRuntimeFolder&) = delete;
  ToolkitsRuntimeFolder& operator=(const ToolkitsRuntimeFolder&) = delete;

 private:
  struct Variable {
    const char* name;
    std::optional<std::string> value;
  };

  void replace(const char* name, const char* value);

  std::vector<Variable> usersOwn_;  // those that were replaced
};

}  // namespace platform
