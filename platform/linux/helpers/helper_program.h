#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>
#include <vector>

// What the helper programs have in common. They have one thread and live for an instant.
namespace helpers {

enum ExitStatus : int { Done = 0, Failed = 1, Misused = 2 };

// The command line without the program's name.
using Arguments = std::vector<std::string>;

// What a command line may ask for, whatever the helper.
struct ShowUsage {};
struct Refusal {
  std::string reason;
};

// First call of every helper: leaves this process, and with it all that it starts, with the PATH that the
// user's session has, the three standard streams (each /dev/null where it was closed) and no other
// descriptor.
void takeUsersEnvironment();

// A child just started, or why there is none.
struct Child {
  pid_t pid = -1;
  int error = 0;  // errno; 0 when the child runs the program
};

enum class Output { Inherited, Discarded };

// Runs argv[0], looked up on PATH when it holds no slash, in a session of its own with default signals, an
// empty signal mask and nothing to read. Returns once the program has taken the child over, or could not.
[[nodiscard]] Child startDetached(const Arguments& argv, Output output);

// The ends of a helper: each prints its text and returns the status to exit with.
int showUsage(std::string_view usage);
int fail(std::string_view program, std::string_view reason);
int refuse(std::string_view program, std::string_view reason);

}  // namespace helpers
