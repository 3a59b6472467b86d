#include "platform/linux/helpers/web_view/refusals.h"

#include "platform/linux/helpers/web_view/address_lines.h"
#include "platform/linux/helpers/web_view/glib_handles.h"

namespace helpers {
namespace {

bool mayNavigate(WebKitPolicyDecision* decision) {
  WebKitNavigationAction* action = webkit_navigation_policy_decision_get_navigation_action(
      reinterpret_cast<WebKitNavigationPolicyDecision*>(decision));
  return isAllowedAddress(webkit_uri_request_get_uri(webkit_navigation_action_get_request(action)));
}

bool isPage(WebKitPolicyDecision* decision) {
  return webkit_response_policy_decision_is_mime_type_supported(
             reinterpret_cast<WebKitResponsePolicyDecision*>(decision)) != FALSE;
}

bool isAllowed(WebKitPolicyDecision* decision, WebKitPolicyDecisionType type) {
  switch (type) {
    case WEBKIT_POLICY_DECISION_TYPE_NAVIGATION_ACTION:
      return mayNavigate(decision);
    case WEBKIT_POLICY_DECISION_TYPE_NEW_WINDOW_ACTION:
      return false;
    case WEBKIT_POLICY_DECISION_TYPE_RESPONSE:
      return isPage(decision);
  }
  return false;
}

gboolean decide(WebKitWebView*, WebKitPolicyDecision* decision, WebKitPolicyDecisionType type, gpointer) {
  if (isAllowed(decision, type)) {
    webkit_policy_decision_use(decision);
  } else {
    webkit_policy_decision_ignore(decision);
  }
  return TRUE;
}

// Dismisses dialogs, but confirms leaving the page.
gboolean answerDialog(WebKitWebView*, WebKitScriptDialog* dialog, gpointer) {
  if (webkit_script_dialog_get_dialog_type(dialog) == WEBKIT_SCRIPT_DIALOG_BEFORE_UNLOAD_CONFIRM) {
    webkit_script_dialog_confirm_set_confirmed(dialog, TRUE);
  }
  return TRUE;
}

gboolean denyPermission(WebKitWebView*, WebKitPermissionRequest* request, gpointer) {
  webkit_permission_request_deny(request);
  return TRUE;
}

gboolean refuseAuthentication(WebKitWebView*, WebKitAuthenticationRequest* request, gpointer) {
  webkit_authentication_request_authenticate(request, nullptr);
  return TRUE;
}

gboolean refuseFileChooser(WebKitWebView*, WebKitFileChooserRequest* request, gpointer) {
  webkit_file_chooser_request_cancel(request);
  return TRUE;
}

gboolean refuseColorChooser(WebKitWebView*, WebKitColorChooserRequest* request, gpointer) {
  webkit_color_chooser_request_cancel(request);
  return TRUE;
}

WebKitWebView* refuseNewWindow(WebKitWebView*, WebKitNavigationAction*, gpointer) {
  return nullptr;
}

// Suppresses the engine's error page.
gboolean suppressErrorPage(WebKitWebView*, WebKitLoadEvent, const char*, GError*, gpointer) {
  return TRUE;
}

// Handles several signals that ask the view to show something, each with one object as argument. TRUE claims
// that it has been shown.
gboolean suppressDisplay(WebKitWebView*, gpointer, gpointer) {
  return TRUE;
}

gboolean suppressOptionMenu(WebKitWebView*, WebKitOptionMenu*, GdkEvent*, GdkRectangle*, gpointer) {
  return TRUE;
}

void cancelDownload(WebKitWebContext*, WebKitDownload* download, gpointer) {
  webkit_download_cancel(download);
}

}  // namespace

void refuseAllButPages(WebKitWebContext* context, WebKitWebView* view) {
  connect(context, "download-started", cancelDownload, nullptr);
  connect(view, "decide-policy", decide, nullptr);
  connect(view, "create", refuseNewWindow, nullptr);
  connect(view, "script-dialog", answerDialog, nullptr);
  connect(view, "permission-request", denyPermission, nullptr);
  connect(view, "authenticate", refuseAuthentication, nullptr);
  connect(view, "run-file-chooser", refuseFileChooser, nullptr);
  connect(view, "run-color-chooser", refuseColorChooser, nullptr);
  connect(view, "load-failed", suppressErrorPage, nullptr);
  connect(view, "show-notification", suppressDisplay, nullptr);
  connect(view, "print", suppressDisplay, nullptr);
  connect(view, "show-option-menu", suppressOptionMenu, nullptr);
}

}  // namespace helpers
