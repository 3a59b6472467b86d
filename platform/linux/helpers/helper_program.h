#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>
#include <vector>

// Shared code of the helper programs, which are single-threaded and short-lived.
namespace helpers {

enum ExitStatus : int { Done = 0, Failed = 1, Misused = 2 };

// The command line without the program name.
using Arguments = std::vector<std::string>;

// Results of command-line parsing that all helpers share.
struct ShowUsage {};
struct Refusal {
  std::string reason;
};

// Prepares the environment of this process and its children. Call it first in main. Restores the PATH of the
// user's session, opens /dev/null for standard streams that are closed, and closes all other descriptors.
void prepareEnvironment();

// Result of starting a child process.
struct Child {
  pid_t pid = -1;
  int error = 0;  // errno; 0 if the child runs the program
};

enum class Output { Inherited, Discarded };

// Runs argv[0], looked up in PATH if it contains no slash, in a new session with default signal actions, an
// empty signal mask and /dev/null as standard input. Returns after the exec has succeeded or failed. Does not
// wait for the child to end.
[[nodiscard]] Child startDetached(const Arguments& argv, Output output);

// Print a text and return the exit status of the helper. showUsage returns Done, or Failed if standard output
// is not writable; fail returns Failed; refuse returns Misused.
int showUsage(std::string_view usage);
int fail(std::string_view program, std::string_view reason);
int refuse(std::string_view program, std::string_view reason);

}  // namespace helpers
