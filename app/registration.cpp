#include "app/command_line.h"
#include "app/nimbatrayAppDelegate.h"

namespace {

std::unique_ptr<platform::ApplicationDelegate> makeDelegate() {
  return std::make_unique<nimbatrayAppDelegate>();
}

}  // namespace

const platform::ApplicationRegistration& platform::applicationRegistration() {
  static constexpr ApplicationRegistration registration{makeDelegate, handleArguments};
  return registration;
}
