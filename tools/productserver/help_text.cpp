#include "tools/productserver/help_text.h"

#include "tools/productserver/fault.h"

namespace tools {
namespace {

constexpr const char* kOptionsText =
    R"(Usage: productserver [--port N] [--port-file FILE] [--uploads FOLDER] [--version-list VERSION]
                     [--fault PATH=NAME ...] FOLDER

A stand-in for the product server. This is a development tool, not part of the agent.

It serves the files of FOLDER over HTTP on 127.0.0.1 alone, and prints a line for each request: the time, the
method, the path with its query, the status and the bytes of the answer's body. It ends at SIGINT or SIGTERM.

  --port N                the port; 0 takes any free one (8090 when not given)
  --port-file FILE        write the port into FILE once the server listens
  --uploads FOLDER        keep each uploaded file in FOLDER, which is made when it is not there
  --version-list VERSION  tell VERSION as the newest one, whatever the version list in FOLDER says
  --fault PATH=NAME       let requests whose path begins with PATH meet a fault; may be repeated
  --help                  show this text
)";

constexpr const char* kPathsText = R"(
Beside the files there are:

  POST /product/nimba/userlog/postdata.php
      takes a form with a file (multipart/form-data), prints a line with the field, the file's name and its size,
      and keeps it as NNNN_NAME, numbered in order; a malformed form gets status 400 and is not kept
  GET /product/nimba/binary/beacon_seen?category=C&C=V
      called back by the analytics page of FOLDER once its script runs; prints "beacon category=C value=V"
  GET or POST /_control/fault?path=PATH&name=NAME
      sets a fault while the server runs; the name "none" clears it. Answers with the faults that are set, also
      without any parameter.
)";

constexpr const char* kFaultsText = R"(
A fault changes the answer alone: an upload that has come in whole is kept all the same. Of several faults that
fit a request, the one with the longest PATH meets it, and NAME*COUNT meets the next COUNT requests only. The
connection ends with the answer. Where "the answer" is named, it is the one that would have been given. The
faults are:

)";

}  // namespace

std::string helpText() {
  std::string text = kOptionsText;
  text.append(kPathsText).append(kFaultsText).append(tellFaults());
  return text.append("\nExit status: 0 ended by a signal, 1 failure, 2 wrong command line.\n");
}

}  // namespace tools
