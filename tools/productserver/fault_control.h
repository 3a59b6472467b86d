#pragma once

#include <httplib.h>

#include "tools/productserver/fault_list.h"

namespace tools {

// Answers a control request. The parameters "path" and "name" set a fault; the name "none" clears it. Without
// parameters, changes nothing. The answer lists the faults that are set.
void controlFaults(FaultList& faults, const httplib::Request& request, httplib::Response& response);

}  // namespace tools
