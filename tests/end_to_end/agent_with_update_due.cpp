// The agent as it is when its fetch at launch has found a newer version.
#include "app/command_line.h"
#include "app/nimbatrayAppDelegate.h"

namespace {

std::unique_ptr<platform::ApplicationDelegate> makeDelegate() {
  auto delegate = std::make_unique<nimbatrayAppDelegate>();
  delegate->bUpdateEnabled = true;
  return delegate;
}

}  // namespace

const platform::ApplicationRegistration& platform::applicationRegistration() {
  static constexpr ApplicationRegistration registration{makeDelegate, handleArguments};
  return registration;
}

int main(int argc, char** argv) {
  return platform::ApplicationMain(argc, argv);
}
