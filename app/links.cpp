#include "app/link_addresses.h"
#include "app/nimbatrayAppDelegate.h"
#include "platform/workspace.h"
#include "usage/server_addresses.h"

using platform::Workspace;

void nimbatrayAppDelegate::secondsection_sub1() {
  notificateGA("clickaction", "Like.F");
  Workspace::sharedWorkspace().openURL(std::string(facebookPage));
}

void nimbatrayAppDelegate::secondsection_sub2() {
  notificateGA("clickaction", "Share.F");
  Workspace::sharedWorkspace().openURL(sharePage(productServer()));
}

void nimbatrayAppDelegate::secondsection_sub3() {
  notificateGA("clickaction", "Share.T");
  Workspace::sharedWorkspace().openURL(tweetPage(productServer()));
}

void nimbatrayAppDelegate::thirdsection_sub1() {
  notificateGA("clickaction", "Visit Site");
  Workspace::sharedWorkspace().openURL(productPage(productServer()));
}

void nimbatrayAppDelegate::thirdsection_sub2() {
  notificateGA("clickaction", "Review");
  Workspace::sharedWorkspace().openURL(reviewPage(productServer()));
}
