#include "platform/linux/application/process_start.h"

#include <linux/close_range.h>
#include <malloc.h>
#include <signal.h>
#include <unistd.h>

#include "platform/linux/application/signal_pipe.h"
#include "platform/portable/process_defaults.h"

namespace platform {

void prepareProcess() {
  setProcessDefaults();
  ::close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_CLOEXEC);
  const sigset_t endings = terminationSignals();
  sigprocmask(SIG_SETMASK, &endings, nullptr);
  // Images are allocated and freed with each notice. Allocate them with mmap, so that freed images return to
  // the system instead of leaving holes in the heap. Setting the threshold also turns off its dynamic
  // adjustment.
  ::mallopt(M_MMAP_THRESHOLD, 128 * 1024);
  // A single arena, because memory that one thread allocates and another frees would fragment several.
  ::mallopt(M_ARENA_MAX, 1);
}

}  // namespace platform
