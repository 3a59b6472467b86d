#include "app/nimbatrayAppDelegate.h"
#include "platform/status_item.h"

nimbatrayAppDelegate::nimbatrayAppDelegate() = default;
nimbatrayAppDelegate::~nimbatrayAppDelegate() = default;
