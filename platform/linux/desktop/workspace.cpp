#include "platform/workspace.h"

#include <optional>

#include <QString>
#include <QUrl>

#include "platform/helper_folder.h"
#include "platform/portable/child_run.h"

namespace platform {
namespace {

bool runOpenHelper(const std::string& folder, const std::string& url) {
  return runAndWait(folder + "/open", {"open", url}) != -1;
}

// Returns the URL re-encoded by QUrl, or nullopt if `text` is not a valid absolute URL.
std::optional<std::string> parsed(const std::string& text) {
  const QUrl url(QString::fromStdString(text), QUrl::StrictMode);
  if (!url.isValid() || url.isRelative()) return std::nullopt;
  return url.toEncoded().toStdString();
}

}  // namespace

Workspace& Workspace::sharedWorkspace() {
  static Workspace workspace;
  return workspace;
}

// The helper passes the URL to the desktop and does not wait for the browser.
void Workspace::openURL(const std::string& text) {
  const auto url = parsed(text);
  if (!url) return;
  for (const std::string& folder : helperFolders()) {
    if (runOpenHelper(folder, *url)) return;
  }
}

}  // namespace platform
