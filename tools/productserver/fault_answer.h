#pragma once

#include <string>

#include "tools/productserver/connection.h"
#include "tools/productserver/fault.h"
#include "tools/productserver/reply.h"

namespace tools {

// Whether the fault comes before the request was taken.
[[nodiscard]] bool cutsRequest(Fault fault);

// Ends the connection of a fault that cuts the request.
void cutRequest(Fault fault, Connection& connection);

// Answers a request that was taken, in the fault's way: `reply` is the answer that it would have got,
// `target` what it asked for. Returns once the client may be left; the connection is over then.
void answerWithFault(Fault fault, Connection& connection, const Reply& reply, const std::string& target);

}  // namespace tools
