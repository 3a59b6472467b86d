#pragma once

#include <webkit2/webkit2.h>

namespace helpers {

// Has the view fetch pages by http and https and refuse whatever else they ask for: other addresses, windows,
// downloads, dialogs, permissions, passwords. Nothing of it waits for an answer.
void refuseAllButPages(WebKitWebContext* context, WebKitWebView* view);

}  // namespace helpers
