#include "app/nimbatrayAppDelegate.h"
#include "platform/alert.h"
#include "platform/application.h"
#include "platform/button.h"
#include "platform/clock.h"
#include "platform/image.h"
#include "platform/log.h"
#include "platform/shell.h"
#include "platform/window.h"
#include "platform/workspace.h"
#include "support/log_rules.h"
#include "usage/server_addresses.h"

namespace {

// Shows a question with two buttons as a sheet. Does nothing if the window was closed.
void ask(platform::Window* window, const char* question, const char* firstButton, const char* secondButton,
         std::function<void(int)> didEnd) {
  if (window == nullptr) return;
  platform::Alert alert;
  alert.addButton(firstButton);
  alert.addButton(secondButton);
  alert.setMessageText(question);
  alert.setAlertStyle(platform::Alert::Style::Warning);
  alert.setIcon(platform::imageNamed("icon.png"));
  alert.beginSheetModalForWindow(window->shared_from_this(), std::move(didEnd));
}

// The exit status is ignored; only a timeout is logged.
void runWithinLimit(const CollectionCommand& command) {
  if (platform::system(command.text, command.limit)) return;
  platform::systemLog(platform::LogPriority::Error, "log collection : a command was killed after " +
                                                        std::to_string(command.limit.count()) +
                                                        " s : " + command.text);
}

}  // namespace

void nimbatrayAppDelegate::logBtnClick() {
  platform::systemLog(platform::LogPriority::Info, "-[nimbatrayAppDelegate logBtnClick:] Log button click!");
  notificateGA("clickaction", "logbtn");
  // The texts of both alerts are frozen: doc/compatibility.md.
  ask(supportWindow, "Log file will be created. It takes a few minutes.", "Continue", "Cancel",
      [this](int returnCode) { alertDidEnd(returnCode); });
}

void nimbatrayAppDelegate::alertDidEnd(int returnCode) {
  if (returnCode != platform::alertFirstButtonReturn) return;
  if (logButton != nullptr) logButton->setEnabled(false);
  collectLog();
}

void nimbatrayAppDelegate::collectLog() {
  const std::string name = collectionName(platform::currentLocalTime());
  const auto commands = collectionCommands(name);
  if (!commands) platform::fatalError("the commands that collect the logs are too long");
  for (const CollectionCommand& command : *commands) runWithinLimit(command);
  if (logButton != nullptr) logButton->setEnabled(true);
  // Posted, so that the sheet is shown after the first one has been removed.
  platform::Application::sharedApplication().performOnMainThread([this] {
    ask(supportWindow, "Log file is created on desktop.", "Close", "Contact us",
        [this](int returnCode) { completeAlertDidEnd(returnCode); });
  });
}

void nimbatrayAppDelegate::completeAlertDidEnd(int returnCode) {
  if (returnCode != platform::alertFirstButtonReturn + 1) return;
  // Frozen: doc/compatibility.md.
  platform::Workspace::sharedWorkspace().openURL(productServer() + "/contact/tovalin/");
}
