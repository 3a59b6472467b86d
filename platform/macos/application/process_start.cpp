#include "platform/macos/application/process_start.h"

#include "platform/macos/application/termination_signals.h"
#include "platform/portable/process_defaults.h"

namespace platform {

void prepareProcess() {
  setProcessDefaults();
  blockTerminationSignals();
}

}  // namespace platform
