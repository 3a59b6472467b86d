// careless_parent PROGRAM [ARGUMENT...]: executes PROGRAM with signals ignored and blocked and with open
// descriptors, like a parent that does not clean up before exec.
#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <initializer_list>

int main(int argc, char** argv) {
  if (argc < 2) return 1;
  for (const int number : {SIGCHLD, SIGHUP, SIGINT, SIGPIPE, SIGTERM}) ::signal(number, SIG_IGN);
  sigset_t all;
  sigfillset(&all);
  ::sigprocmask(SIG_BLOCK, &all, nullptr);
  const int open = ::open("/proc/self/exe", O_RDONLY);
  ::dup2(open, 9);
  ::dup2(open, 100);
  ::execvp(argv[1], argv + 1);
  return 1;
}
