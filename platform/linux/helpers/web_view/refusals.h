#pragma once

#include <webkit2/webkit2.h>

namespace helpers {

// Restricts the view to pages over http and https. Refuses everything else that pages request: other
// addresses, windows, downloads, dialogs, permissions, passwords. Nothing blocks for an answer. Main thread
// only.
void refuseAllButPages(WebKitWebContext* context, WebKitWebView* view);

}  // namespace helpers
