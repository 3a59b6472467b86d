#pragma once

#include <string>

#include "tools/productserver/connection.h"
#include "tools/productserver/fault.h"
#include "tools/productserver/reply.h"

namespace tools {

// Returns whether the fault occurs before the request was received completely.
[[nodiscard]] bool cutsRequest(Fault fault);

// Ends the connection for such a fault.
void cutRequest(Fault fault, Connection& connection);

// Answers a complete request with the fault: `reply` is the normal answer, `target` the request target. The
// caller closes the connection afterwards.
void answerWithFault(Fault fault, Connection& connection, const Reply& reply, const std::string& target);

}  // namespace tools
