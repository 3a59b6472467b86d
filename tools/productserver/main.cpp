#include <csignal>
#include <cstdio>
#include <optional>
#include <string>
#include <utility>

#include "tools/common/stop_signals.h"
#include "tools/productserver/help_text.h"
#include "tools/productserver/options.h"
#include "tools/productserver/port_file.h"
#include "tools/productserver/product_server.h"
#include "tools/productserver/served_folder.h"
#include "tools/productserver/upload_folder.h"

namespace {

int fail(int status, const std::string& reason) {
  std::fprintf(stderr, "productserver: %s\n", reason.c_str());
  return status;
}

std::optional<tools::Offer> offerOf(const tools::Options& options) {
  std::optional<tools::ServedFolder> folder = tools::ServedFolder::at(options.folder);
  if (!folder) {
    fail(2, "no such folder: " + options.folder);
    return std::nullopt;
  }
  tools::Offer offer{*std::move(folder), nullptr, options.version};
  if (options.uploads.empty()) return offer;
  offer.uploads = tools::UploadFolder::open(options.uploads);
  if (offer.uploads) return offer;
  fail(2, "cannot create the folder " + options.uploads);
  return std::nullopt;
}

int serve(tools::Offer offer, const tools::Options& options) {
  tools::ProductServer server(std::move(offer), [](const std::string& line) { std::puts(line.c_str()); });
  for (const auto& [path, order] : options.faults) server.faults().set(path, order);
  const std::optional<int> port = server.bind(options.port);
  if (!port)
    return fail(1, "cannot listen on port " + std::to_string(options.port) + " of 127.0.0.1; is it in use?");
  if (!options.portFile.empty() && !tools::writePortFile(options.portFile, *port)) {
    return fail(1, "cannot write " + options.portFile);
  }
  const tools::StopSignals signals([&server] { server.stop(); });
  std::printf("listening on http://127.0.0.1:%d\n", *port);
  return server.serve() ? 0 : fail(1, "the server has failed");
}

}  // namespace

int main(int argc, char** argv) {
  std::signal(SIGPIPE, SIG_IGN);
  std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
  const std::optional<tools::Options> options = tools::parseOptions(argc, argv);
  if (!options) return 2;
  if (options->help) return std::fputs(tools::helpText().c_str(), stdout) < 0 ? 1 : 0;
  std::optional<tools::Offer> offer = offerOf(*options);
  return offer ? serve(*std::move(offer), *options) : 2;
}
