#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <memory>
#include <string>
#include <utility>

#include "platform/file_descriptor.h"
#include "tools/common/stop_signals.h"
#include "tools/mainapp/command_fifo.h"
#include "tools/mainapp/commands.h"
#include "tools/mainapp/event_loop.h"
#include "tools/mainapp/options.h"

namespace {

constexpr const char* kCommandPipe = "/tmp/KMPIPE";

int fail(const std::string& reason) {
  std::fprintf(stderr, "mainapp: %s\n", reason.c_str());
  return 1;
}

int sendAll(const std::vector<std::string>& texts) {
  return std::all_of(texts.begin(), texts.end(), tools::sendAndReport) ? 0 : 1;
}

int serve(const tools::Options& options) {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) return fail("cannot create a pipe");
  const platform::FileDescriptor stopped(ends[0]);
  platform::FileDescriptor stop(ends[1]);
  const tools::StopSignals signals([&stop] { stop.reset(); });

  std::string reason;
  std::unique_ptr<tools::CommandFifo> fifo = tools::CommandFifo::open(kCommandPipe, reason);
  if (!fifo) return fail(reason);
  std::printf("reading %s\n", kCommandPipe);
  tools::EventLoop loop(std::move(fifo), options, stopped.get());
  return loop.run();
}

}  // namespace

int main(int argc, char** argv) {
  std::signal(SIGPIPE, SIG_IGN);
  std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
  const std::optional<tools::Options> options = tools::parseOptions(argc, argv);
  if (!options) return 2;
  if (options->help) return std::fputs(tools::helpText().c_str(), stdout) < 0 ? 1 : 0;
  return options->sends.empty() ? serve(*options) : sendAll(options->sends);
}
