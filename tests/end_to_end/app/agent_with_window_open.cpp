// The agent with a window that refuses to close, inside a nested run loop, as behind a modal window.
#include <QCloseEvent>
#include <QEventLoop>
#include <QLabel>

#include "app/command_line.h"
#include "app/nimbatrayAppDelegate.h"

namespace {

class WindowThatStays : public QLabel {
  void closeEvent(QCloseEvent* event) override { event->ignore(); }
};

class DelegateWithWindow : public platform::ApplicationDelegate {
 public:
  void awakeFromNib() override { agents_.awakeFromNib(); }
  void applicationDidFinishLaunching() override {
    agents_.applicationDidFinishLaunching();
    WindowThatStays window;
    window.setWindowTitle("a window");
    window.show();
    QEventLoop().exec();
  }
  void applicationShouldHandleReopen() override { agents_.applicationShouldHandleReopen(); }
  void applicationWillTerminate() override { agents_.applicationWillTerminate(); }

 private:
  nimbatrayAppDelegate agents_;
};

std::unique_ptr<platform::ApplicationDelegate> makeDelegate() {
  return std::make_unique<DelegateWithWindow>();
}

}  // namespace

const platform::ApplicationRegistration& platform::applicationRegistration() {
  static constexpr ApplicationRegistration registration{makeDelegate, handleArguments};
  return registration;
}

int main(int argc, char** argv) {
  return platform::ApplicationMain(argc, argv);
}
