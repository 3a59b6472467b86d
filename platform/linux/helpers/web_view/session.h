#pragma once

#include <glib.h>

#include <memory>

#include "platform/file_descriptor.h"
#include "platform/linux/helpers/web_view/address_lines.h"
#include "platform/linux/helpers/web_view/glib_handles.h"
#include "platform/linux/helpers/web_view/lifetime.h"
#include "platform/linux/helpers/web_view/page.h"

namespace helpers {

// Main loop of the helper: loads the addresses that arrive on `input` until the lifetime is over or SIGTERM,
// SIGINT or SIGHUP arrives. Main thread only.
class Session {
 public:
  // Pages reach the network through `network`, which must outlive this object.
  Session(platform::FileDescriptor input, FilterProxy& network, Lifetime::Clock::duration idle);
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  void run();

 private:
  void readInput();
  void inputEnded();
  void followPage();
  void scheduleEnd();
  void shutDownOrQuit();

  platform::FileDescriptor input_;
  AddressLines lines_;
  Lifetime lifetime_;
  struct EndLoop {
    void operator()(GMainLoop* loop) const { g_main_loop_unref(loop); }
  };
  std::unique_ptr<GMainLoop, EndLoop> loop_;
  EventSource inputSource_;
  EventSource endTimer_;
  bool inputShutDown_ = false;
  Page page_;
};

}  // namespace helpers
