#pragma once

#include <string>

namespace fuzz {

// What must hold of a link that the server names, judged by the toolkit's own reader of addresses: the
// desktop is asked to open it only when it is a whole address of the web, which has a host.
void checkLink(const std::string& link);

}  // namespace fuzz
