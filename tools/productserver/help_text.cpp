#include "tools/productserver/help_text.h"

#include "tools/productserver/fault.h"

namespace tools {
namespace {

constexpr const char* kOptionsText =
    R"(Usage: productserver [--port N] [--port-file FILE] [--uploads FOLDER] [--version-list VERSION]
                     [--fault PATH=NAME ...] FOLDER

A stand-in for the product server. This is a development tool, not part of the agent.

It serves the files of FOLDER over HTTP on 127.0.0.1 only and prints one line per request: the time, the method,
the path with its query, the status and the size of the answer's body in bytes. It exits at SIGINT or SIGTERM.

  --port N                the port (default 8090); 0 selects any free port
  --port-file FILE        write the port to FILE when the server listens
  --uploads FOLDER        store uploaded files in FOLDER, which is created if missing
  --version-list VERSION  report VERSION as the newest version instead of the one in FOLDER
  --fault PATH=NAME       apply the fault NAME to requests whose path begins with PATH; may be repeated
  --help                  show this text
)";

constexpr const char* kPathsText = R"(
Paths besides the files:

  POST /product/nimba/userlog/postdata.php
      accepts a form with a file (multipart/form-data), prints the field, the file's name and its size, and stores
      the file as NNNN_NAME, numbered in order; a malformed form is answered with status 400 and not stored
  GET /product/nimba/binary/beacon_seen?category=C&C=V
      requested by the script of the analytics page in FOLDER; prints "beacon category=C value=V"
  GET or POST /_control/fault?path=PATH&name=NAME
      sets a fault while the server runs; the name "none" clears it. Answers with the list of faults; without
      parameters, changes nothing.
)";

constexpr const char* kFaultsText = R"(
A fault changes only the answer: an upload received completely is stored nevertheless. If several faults match a
request, the one with the longest PATH applies. NAME*COUNT applies to the next COUNT requests only. The connection
ends with the answer. Below, "the answer" is the answer without the fault. The faults are:

)";

}  // namespace

std::string helpText() {
  std::string text = kOptionsText;
  text.append(kPathsText).append(kFaultsText).append(describeFaults());
  return text.append("\nExit status: 0 ended by a signal, 1 failure, 2 wrong command line.\n");
}

}  // namespace tools
