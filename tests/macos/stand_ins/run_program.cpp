#include "tests/macos/stand_ins/run_program.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

void standInRun(std::vector<std::string> command) {
  std::vector<char*> arguments;
  for (std::string& argument : command) arguments.push_back(argument.data());
  arguments.push_back(nullptr);
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  sigset_t none;
  sigemptyset(&none);
  posix_spawnattr_setsigmask(&attributes, &none);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
  pid_t child = 0;
  if (::posix_spawnp(&child, arguments[0], nullptr, &attributes, arguments.data(), environ) == 0)
    ::waitpid(child, nullptr, 0);
  posix_spawnattr_destroy(&attributes);
}
