#pragma once

#include <string>

namespace fuzz {

// Checks a link with Qt's parser: an accepted link must be an http or https address with a host, because the
// desktop is asked to open it.
void checkLink(const std::string& link);

}  // namespace fuzz
