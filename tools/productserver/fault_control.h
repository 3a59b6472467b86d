#pragma once

#include <httplib.h>

#include "tools/productserver/fault_list.h"

namespace tools {

// Answers a request whose parameters "path" and "name" set a fault, or with the name "none" clear it; without
// both nothing is changed. The answer is the list of faults that are set.
void controlFaults(FaultList& faults, const httplib::Request& request, httplib::Response& response);

}  // namespace tools
